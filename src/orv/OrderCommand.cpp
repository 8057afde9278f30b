// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Arguments.h"
#include "Command.h"
#include "CommandFunctions.h"
#include "Input.h"
#include "Output.h"

#include <Kestrin/Orv/Inspect/Paths.h>
#include <Kestrin/Orv/Inspect/Schedule.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

namespace Kestrin::Orv::Program {

using Inspect::NodeRecord;
using Inspect::Paths;
using Inspect::Schedule;
using Inspect::Snapshot;

namespace {

void writeText(const Snapshot& snapshot, const Schedule& schedule, Output& output)
{
    const Paths paths(snapshot);
    for (int position = 0; position < schedule.order.size(); ++position) {
        const int node = schedule.order.at(position);
        const NodeRecord& record = snapshot.node(node);
        QString line = QString::number(position + 1) + QLatin1Char('\t') + paths.node(node);
        for (int i = 0; i < record.outputs.size(); ++i)
            line += QLatin1Char('\t') + Paths::escaped(record.outputs.at(i).name) + QLatin1Char('=')
                + QString::number(schedule.users.value(node).value(i));
        output.write(line + QLatin1Char('\n'));
    }
}

QJsonObject toJson(const Snapshot& snapshot, const Schedule& schedule)
{
    const Paths paths(snapshot);
    QJsonArray order;
    for (int position = 0; position < schedule.order.size(); ++position) {
        const int node = schedule.order.at(position);
        const NodeRecord& record = snapshot.node(node);
        QJsonArray outputs;
        for (int i = 0; i < record.outputs.size(); ++i)
            outputs.append(
                QJsonObject{{QStringLiteral("name"), record.outputs.at(i).name},
                            {QStringLiteral("users"), schedule.users.value(node).value(i)}});
        order.append(QJsonObject{{QStringLiteral("position"), position},
                                 {QStringLiteral("path"), paths.node(node)},
                                 {QStringLiteral("outputs"), outputs}});
    }
    return {{QStringLiteral("order"), order}};
}

} // namespace

int runOrder(const Arguments& arguments, Output& output)
{
    const Document document = readInput(arguments.positional(0));
    const Schedule schedule = Inspect::predictSchedule(document.snapshot);
    if (arguments.json())
        output.write(toJson(document.snapshot, schedule));
    else
        writeText(document.snapshot, schedule, output);
    return kSuccess;
}

} // namespace Kestrin::Orv::Program
