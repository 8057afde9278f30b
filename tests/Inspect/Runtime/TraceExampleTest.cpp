// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>

#include <Kestrin/Orv/RenderPassHelper.h>
#include <Kestrin/Orv/Renderer.h>

#include "Inspect/Runtime/TraceFileReader.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <sstream>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

TEST(TraceExample, WritesAFileOfItsFrames)
{
    using Blur = RenderPassHelper;
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("frames.json"));
    std::ostringstream out;
    //! [record]
    Trace trace;
    Renderer renderer;
    const int blur = renderer.addPass(QStringLiteral("Blur"),
                                      new TracedPass(trace, QStringLiteral("Blur"), new Blur), 0);
    renderer.setTarget(blur);
    renderer.setup(nullptr);

    for (int i = 0; i < 100; ++i) {
        trace.beginFrame();
        renderer.render(nullptr);
        trace.endFrame();
    }

    for (const TraceSummary& pass : trace.passes())
        out << pass.name.toStdString() << ": half of its frames took up to " << pass.median
            << " ns\n";

    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        trace.writeTraceEvents(file);
    //! [record]
    file.close();
    EXPECT_EQ(out.str().find("Blur: half of its frames took up to "), 0u);
    EXPECT_EQ(trace.passes().first().count, 100);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(completeEvents(file.readAll()).size(), 1u + 4 * 100u);
}
