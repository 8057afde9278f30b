// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/Report/PageParts.h"
#include "Inspect/support/SampleRenderer.h"

#include <gtest/gtest.h>

#include <Kestrin/Orv/Inspect/Picture.h>

#include <QtCore/QProcess>

using namespace Kestrin::Orv::Inspect;

namespace {

QByteArray withPicture(const QByteArray& picture)
{
    return report(Snapshot(), nullptr, picture);
}

QByteArray svg(const QByteArray& inside)
{
    return "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink' "
           "width='40pt' height='20pt' viewBox='0 0 40 20'>"
        + inside + "</svg>";
}

} // namespace

TEST(ReportPicture, IsPartOfThePage)
{
    const QByteArray page =
        withPicture("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\n"
                    "<!DOCTYPE svg PUBLIC \"-//W3C//DTD SVG 1.1//EN\"\n"
                    " \"http://www.w3.org/Graphics/SVG/1.1/DTD/svg11.dtd\">\n<!-- made by dot -->\n"
                    + svg("<g id='a' class='node' transform='scale(1 1)'><title>n1</title>"
                          "<polygon fill='#ffffff' points='0,0 1,0 1,1'/><text x='1' "
                          "y='2'>a &lt; b</text>"
                          "</g>"));
    EXPECT_TRUE(page.contains("viewBox='0 0 40 20' style='--w:40.000pt'>\n"
                              "<g class='node' transform='scale(1 1)'>"
                              "<polygon fill='#ffffff' points='0,0 1,0 1,1'></polygon>"
                              "<text x='1' y='2'>a &lt; b</text></g></svg>"));
    EXPECT_FALSE(page.contains("<!DOCTYPE svg"));
    EXPECT_EQ(nestingProblem(page), "");
}

TEST(ReportPicture, KeepsNothingThatActsOrLoads)
{
    const QByteArray page = withPicture(
        svg("<script>alert(1)</script><style>*{}</style><image xlink:href='e:1'/><use href='e:2'/>"
            "<foreignObject><p>x</p></foreignObject><animate/><set/><svg><script/></svg>"
            "<g onclick='e:3' style='e:4' href='e:5'><a "
            "xlink:href='javascript:e'><text>kept</text>"
            "</a></g><polygon fill='URL(e:6)' points=''/>"));
    EXPECT_TRUE(page.contains("<g><text>kept</text></g><polygon points=''></polygon></svg>"));
    for (const char* part : {"alert", "e:1", "e:2", "e:3", "e:4", "e:5", "e:6", "javascript",
                             "animate", "foreignObject", "<set", "<use", "<image", "onclick"})
        EXPECT_FALSE(page.contains(part)) << part;
}

TEST(ReportPicture, ThatIsNotWellFormedIsShownAsText)
{
    const char marker[] = "digraph orv {\n";
    EXPECT_TRUE(withPicture(QByteArray()).contains(marker));
    EXPECT_TRUE(withPicture("<html width='1'></html>").contains(marker));
    EXPECT_TRUE(withPicture("<svg width='40pt'>").contains(marker));
    EXPECT_TRUE(withPicture("<svg height='40pt'></svg>").contains(marker));
    EXPECT_TRUE(withPicture("<svg width='-1'></svg>").contains(marker));
    EXPECT_TRUE(withPicture(svg("<g></svg>")).contains(marker));
    EXPECT_TRUE(withPicture(svg("&unknown;")).contains(marker));
    EXPECT_TRUE(withPicture("\xFF\xFE\x01").contains(marker));
    EXPECT_TRUE(withPicture(QByteArray("\0\0\0\0", 4)).contains(marker));
    EXPECT_FALSE(withPicture(svg(QByteArray())).contains(marker));
}

TEST(ReportPicture, MayNotDefineEntities)
{
    const QByteArray page = withPicture(
        "<!DOCTYPE svg [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;\">]>" + svg("&b;"));
    EXPECT_FALSE(page.contains("aaaaaaaaaa"));
    EXPECT_TRUE(page.contains("digraph orv {\n"));
}

TEST(ReportPicture, CannotLeaveItsAttributes)
{
    const QByteArray page = withPicture(
        "<svg width=\"9\" viewBox='\"&gt;&lt;script&gt;'><g class='\"&gt;&lt;b&gt;'/></svg>");
    EXPECT_TRUE(page.contains("viewBox='&quot;&gt;&lt;script&gt;'"));
    EXPECT_TRUE(page.contains("class='&quot;&gt;&lt;b&gt;'"));
    EXPECT_EQ(nestingProblem(page), "");
}

TEST(ReportPicture, MayNestToAnyDepth)
{
    const int depth = 200000;
    const QByteArray page =
        withPicture(svg(QByteArray("<g>").repeated(depth) + QByteArray("</g>").repeated(depth)));
    EXPECT_EQ(page.count("<g>"), depth);
}
