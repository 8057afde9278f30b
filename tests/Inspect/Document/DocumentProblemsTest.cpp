// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Inspect/support/DocumentSupport.h"

#include <gtest/gtest.h>

using namespace Kestrin::Orv::Inspect;

namespace {

std::string problemsOf(const char* members)
{
    const ReadResult read = readDocument(documentOf(members));
    EXPECT_EQ(read.snapshot.nodes.size(), 1) << "a document with an error builds nothing";
    return listed(read.problems);
}

std::string problemsOfText(const QByteArray& text)
{
    return listed(readDocument(text).problems);
}

} // namespace

TEST(DocumentProblems, ReportThatThereIsNothing)
{
    EXPECT_EQ(problemsOfText(""), "1:1 syntax: the text ends too early\n");
}

TEST(DocumentProblems, ReportThatTheDocumentIsNoObject)
{
    EXPECT_EQ(problemsOfText(" []"),
              "1:2 wrong-type: the document must be an object, not a list\n");
}

TEST(DocumentProblems, ReportAnUnknownFormatAndNothingElse)
{
    EXPECT_EQ(problemsOfText(R"({"format": "graph", "version": 1, "nodes": 3})"),
              "1:12 unknown-format: the format is not \"orv-graph\"\n");
}

TEST(DocumentProblems, ReportAnUnknownVersionAndNothingElse)
{
    EXPECT_EQ(problemsOfText(R"({"format": "orv-graph", "version": 2, "nodes": 3})"),
              "1:36 unknown-version: the version is not 1\n");
}

TEST(DocumentProblems, ReportAMissingHeader)
{
    EXPECT_EQ(problemsOfText("{}"),
              "1:1 missing-key: the key \"format\" is missing\n"
              "1:1 missing-key: the key \"version\" is missing\n");
}

TEST(DocumentProblems, ReportWhereTheTextIsNotUtf8)
{
    EXPECT_EQ(problemsOfText("{\n \"\xC3\xA9\x80\": 1}"),
              "2:4 invalid-utf8: the text is not UTF-8 from here on\n");
}

TEST(DocumentProblems, ReportTheFirstByteOfASequenceThatIsNotUtf8)
{
    for (const char* bytes : {"\xC0\x80", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
                              "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xC3", "\xE2\x82"})
        EXPECT_EQ(problemsOfText(QByteArray("[\"") + bytes + "\"]"),
                  "1:3 invalid-utf8: the text is not UTF-8 from here on\n");
}

TEST(DocumentProblems, DoNotCountAByteOrderMark)
{
    EXPECT_EQ(problemsOfText("\xEF\xBB\xBF[]"),
              "1:1 wrong-type: the document must be an object, not a list\n");
}

TEST(DocumentProblems, CountColumnsFarInALine)
{
    QByteArray text = "[\"";
    for (int i = 0; i < 500; ++i)
        text += "\xE2\x82\xAC";
    EXPECT_EQ(problemsOfText(text + "\\q\"]"), "1:504 syntax: there is no such escape sequence\n");
}

TEST(DocumentProblems, ReportWhereValuesAreNestedTooDeep)
{
    const QByteArray deep(100000, '[');
    EXPECT_EQ(problemsOfText(deep), "1:501 too-deep: values are nested deeper than 500\n");
}

TEST(DocumentProblems, ReportWhereListsAreNestedTooDeep)
{
    QByteArray value;
    for (int i = 0; i < 65; ++i)
        value += R"({"type":"QVariantList","value":[)";
    for (int i = 0; i < 65; ++i)
        value += "]}";
    const QByteArray text =
        R"("nodes":[{"path":"A","pass":"","inputs":[{"name":"i","default":)" + value + "}]}]";
    EXPECT_EQ(problemsOf(text.constData()), "2:2143 too-deep: lists are nested deeper than 64\n");
}

TEST(DocumentProblems, AreAllReportedAtOnceInTheirOrder)
{
    EXPECT_EQ(problemsOf(R"("nodes": [
    {"path": "Bloom", "inputs": ["Angle"], "outputs": ["Color"]},
    {"path": "Bloom/Blur", "pass": "Gauss", "enabled": "no", "inputs": ["Angle"], "outputs": ["Color"]},
    {"path": "Glow/Blur", "pass": "Gauss", "inputs": ["Angle"], "outputs": ["Color"]},
    {"path": "Tone", "pass": "", "inputs": ["Color", {"name": "Gain", "default": {"value": 1}}], "output": []},
    {"path": "Tone", "pass": ""}
],
"edges": [
    "Angle -> Bloom.Angel",
    "Bloom.Angel -> Bloom/Blur.Angle",
    "Bloom.Angle -> Bloom/Blur.Angle",
    "Bloom/Blur.Color -> Tone.Color",
    "Glow/Blur.Color -> Tone.Color",
    "Bloom.Color -> Ton.Color",
    "Tone.Nothing -> Picture"
],
"outputs": ["Picture"],
"parameters": ["Angle", {"name": "Step", "type": "int", "value": "1"}],
"target": "Bloom/Glow")"),
              R"(4:56 wrong-type: "enabled" must be true or false, not a string
5:14 unknown-parent: "Glow/Blur": no entry before this one is the group "Glow"
6:92 missing-type: only strings, true and false need no "type"
6:98 unknown-key: there is no key "output" here, only enabled, groups, inputs, outputs, pass, path, value
7:14 duplicate-path: "Tone" is already in line 6; number the nodes of one name, starting with "Tone[0]"
10:5 unknown-port: "Angle -> Bloom.Angel": "Bloom" has no input "Angel"
13:5 unrelated-nodes: "Bloom/Blur.Color -> Tone.Color": the nodes are neither siblings nor a group and its child
15:5 unknown-node: "Bloom.Color -> Ton.Color": there is no node "Ton"
19:66 wrong-value: this is not a value of type "int"
20:11 unknown-node: target: there is no node "Bloom/Glow"
)");
}

TEST(DocumentProblems, ReportWhereACommaIsMissing)
{
    EXPECT_EQ(problemsOf(R"("nodes":[])"
                         "\n"
                         R"("edges":[])"),
              R"(3:1 syntax: a comma or a closing brace is expected here)"
              "\n");
}

TEST(DocumentProblems, ReportWhereAValueIsMissing)
{
    EXPECT_EQ(problemsOf(R"("nodes":[)"),
              R"(2:10 syntax: a value is expected here)"
              "\n");
}

TEST(DocumentProblems, CountColumnsInCharacters)
{
    EXPECT_EQ(problemsOf(R"("name":"é\q")"),
              R"(2:11 syntax: there is no such escape sequence)"
              "\n");
}

TEST(DocumentProblems, ReportWhatFollowsTheDocument)
{
    EXPECT_EQ(problemsOf(R"("name":"x"} true {)"),
              R"(2:13 syntax: nothing may follow the document)"
              "\n");
}

TEST(DocumentProblems, ReportKeysThatStandTwice)
{
    EXPECT_EQ(problemsOf(R"("name":"a",)"
                         "\n"
                         R"(  "name":"b")"),
              R"(3:3 duplicate-key: the object already has a key "name")"
              "\n");
}

TEST(DocumentProblems, ReportKeysThatStandTwiceInAValue)
{
    EXPECT_EQ(
        problemsOf(R"("parameters":[{"name":"a","type":"QVariantMap","value":{"k":{"value":"1"},)"
                   "\n"
                   R"("k":{"value":"2"}}}])"),
        R"(3:1 duplicate-key: the object already has a key "k")"
        "\n");
}

TEST(DocumentProblems, ReportUnknownKeys)
{
    EXPECT_EQ(problemsOf(R"("node":[])"),
              R"(2:1 unknown-key: there is no key "node" here, only edges, format, groups,)"
              R"( name, nodes, outputs, parameters, target, value, version)"
              "\n");
}

TEST(DocumentProblems, ReportNodesWithoutPath)
{
    EXPECT_EQ(problemsOf(R"("nodes":[)"
                         "\n"
                         R"( {"pass":"x"}])"),
              R"(3:2 missing-key: the key "path" is missing)"
              "\n");
}

TEST(DocumentProblems, ReportPortsWithoutName)
{
    EXPECT_EQ(problemsOf(R"("outputs":[{}])"),
              R"(2:12 missing-key: the key "name" is missing)"
              "\n");
}

TEST(DocumentProblems, ReportTypesWithoutValue)
{
    EXPECT_EQ(problemsOf(R"("parameters":[{"name":"A","type":"int"}])"),
              R"(2:15 missing-key: the key "value" is missing)"
              "\n");
}

TEST(DocumentProblems, ReportWhatIsNoList)
{
    EXPECT_EQ(problemsOf(R"("nodes":{},"edges":3)"),
              R"(2:9 wrong-type: "nodes" must be a list, not an object)"
              "\n"
              R"(2:20 wrong-type: "edges" must be a list, not a number)"
              "\n");
}

TEST(DocumentProblems, ReportWhatIsNoNode)
{
    EXPECT_EQ(problemsOf(R"("nodes":[null, []])"),
              R"(2:10 wrong-type: a node must be an object, not null)"
              "\n"
              R"(2:16 wrong-type: a node must be an object, not a list)"
              "\n");
}

TEST(DocumentProblems, ReportWhatIsNoPort)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A","inputs":[true],"outputs":"x"}])"),
              R"(2:32 wrong-type: an input must be a string or an object, not true)"
              "\n"
              R"(2:48 wrong-type: "outputs" must be a list, not a string)"
              "\n");
}

TEST(DocumentProblems, ReportFlagsThatAreNone)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A","pass":"","enabled":1}])"),
              R"(2:42 wrong-type: "enabled" must be true or false, not a number)"
              "\n");
}

TEST(DocumentProblems, ReportNumbersThatAreNotWhole)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A","value":1.5}])"),
              R"(2:30 wrong-type: "value" must be a whole number)"
              "\n");
}

TEST(DocumentProblems, ReportWhatIsNoGroup)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A","inputs":[{"name":"x","group":[]}]}])"),
              R"(2:52 wrong-type: a group must be a string or a number, not a list)"
              "\n");
}

TEST(DocumentProblems, ReportPathsThatAreNone)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A/"},{"path":""},{"path":"A%2"},{"path":"/A"}])"),
              R"(2:18 bad-path: "A/" is not the path of a node)"
              "\n"
              R"(2:32 bad-path: "" is not the path of a node)"
              "\n"
              R"(2:44 bad-path: "A%2" is not the path of a node)"
              "\n"
              R"(2:59 bad-path: "/A" is not the path of a node)"
              "\n");
}

TEST(DocumentProblems, ReportNodesBeforeTheirParentOnce)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A/B"},)"
                         "\n"
                         R"({"path":"A/B/C"},{"path":"A/D"}])"),
              R"(2:18 unknown-parent: "A/B": no entry before this one is the group "A")"
              "\n");
}

TEST(DocumentProblems, ReportPathsThatStandTwice)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A"},)"
                         "\n"
                         R"({"path":"A"},{"path":"A"}])"),
              R"(3:9 duplicate-path: "A" is already in line 2; number the nodes of )"
              R"(one name, starting with "A[0]")"
              "\n"
              R"(3:22 duplicate-path: "A" is already in line 2; number the nodes of )"
              R"(one name, starting with "A[0]")"
              "\n");
}

TEST(DocumentProblems, ReportNothingOfTheNodesWithinARepeatedOne)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A"},{"path":"A/B"},)"
                         "\n"
                         R"({"path":"A"},{"path":"A/B"}])"),
              R"(3:9 duplicate-path: "A" is already in line 2; number the nodes of )"
              R"(one name, starting with "A[0]")"
              "\n");
}

TEST(DocumentProblems, ReportNumbersWithoutNeed)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A[1]"}])"),
              R"(2:18 wrong-number: "A[1]" must be "A" by the order of the entries)"
              "\n");
}

TEST(DocumentProblems, ReportWhereANumberIsNeeded)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A"},)"
                         "\n"
                         R"({"path":"A[1]"}])"),
              R"(2:18 wrong-number: "A" must be "A[0]" by the order of the entries)"
              "\n");
}

TEST(DocumentProblems, ReportNumbersOutOfOrder)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A[1]"},)"
                         "\n"
                         R"({"path":"A[0]"}])"),
              R"(2:18 wrong-number: "A[1]" must be "A[0]" by the order of the entries)"
              "\n"
              R"(3:9 wrong-number: "A[0]" must be "A[1]" by the order of the entries)"
              "\n");
}

TEST(DocumentProblems, ReportValuesThatWouldNameAPass)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A","value":0},{"path":"B","pass":""}])"),
              R"(2:30 value-names-pass: the value 0 is the number of a pass: passes are )"
              R"(numbered from 0 to 0)"
              "\n");
}

TEST(DocumentProblems, ReportDisabledGroups)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A","enabled":false}])"),
              R"(2:32 misplaced-key: only passes can be enabled or disabled)"
              "\n");
}

TEST(DocumentProblems, ReportPassesWithAValue)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A","pass":"","value":2}])"),
              R"(2:40 misplaced-key: only groups have a "value"; passes are numbered in order)"
              "\n");
}

TEST(DocumentProblems, ReportGroupsWithADefault)
{
    EXPECT_EQ(
        problemsOf(R"("nodes":[{"path":"A","inputs":[{"name":"x","default":{"value":true}}]}])"),
        R"(2:54 misplaced-key: only inputs of passes can have a default value)"
        "\n");
}

TEST(DocumentProblems, ReportUnknownGroups)
{
    EXPECT_EQ(
        problemsOf(R"("nodes":[{"path":"A","groups":["g"],"inputs":[{"name":"x","group":"h"}]}])"),
        R"(2:67 unknown-group: there is no group "h")"
        "\n");
}

TEST(DocumentProblems, TheValueOfANodeWithoutAPathIsNotLookedAt)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"value":7}])"),
              R"(2:10 missing-key: the key "path" is missing)"
              "\n");
}

TEST(DocumentProblems, AGroupThatCannotBeReadMakesNoOtherOneUnknown)
{
    EXPECT_EQ(
        problemsOf(R"("nodes":[{"path":"A","groups":[1],"inputs":[{"name":"x","group":"h"}]}])"),
        R"(2:32 wrong-type: a group must be a string, not a number)"
        "\n");
}

TEST(DocumentProblems, ReportGroupsOfOneName)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A","groups":["g","g"],"inputs":[{"name":"x",)"
                         R"("group":"g"}]}])"),
              R"(2:71 ambiguous-group: several groups are called "g": give the number of one)"
              "\n");
}

TEST(DocumentProblems, ReportNumbersWithoutType)
{
    EXPECT_EQ(problemsOf(R"("parameters":[{"name":"A","value":3}])"),
              R"(2:35 missing-type: only strings, true and false need no "type")"
              "\n");
}

TEST(DocumentProblems, ReportValuesOutOfRange)
{
    EXPECT_EQ(
        problemsOf(R"("parameters":[{"name":"A","type":"int","value":3000000000},)"
                   "\n"
                   R"({"name":"B","type":"QVariantList","value":[{"type":"uint","value":-1}]}])"),
        R"(2:48 wrong-value: this is not a value of type "int")"
        "\n"
        R"(3:67 wrong-value: this is not a value of type "uint")"
        "\n");
}

TEST(DocumentProblems, ReportWhatIsNoEdge)
{
    EXPECT_EQ(problemsOf(R"("edges":["A.x","A.x->B.y"])"),
              R"(2:10 bad-edge: "A.x": an edge is written as "FROM -> TO")"
              "\n"
              R"(2:16 bad-edge: "A.x->B.y": an edge is written as "FROM -> TO")"
              "\n");
}

TEST(DocumentProblems, ReportEdgesToWhatIsNoPath)
{
    EXPECT_EQ(problemsOf(R"("edges":["A.x[ -> b"],"outputs":["b"])"),
              R"(2:10 bad-path: "A.x[ -> b": "A.x[" is not the path of a port)"
              "\n");
}

TEST(DocumentProblems, ReportEachUnknownNodeOnce)
{
    EXPECT_EQ(problemsOf(R"("edges":["A.x -> B.y",)"
                         "\n"
                         R"("B.y -> A.z"])"),
              R"(2:10 unknown-node: "A.x -> B.y": there is no node "A")"
              "\n"
              R"(2:10 unknown-node: "A.x -> B.y": there is no node "B")"
              "\n");
}

TEST(DocumentProblems, ReportAnUnknownTarget)
{
    EXPECT_EQ(problemsOf(R"("target":"A")"),
              R"(2:10 unknown-node: target: there is no node "A")"
              "\n");
}

TEST(DocumentProblems, ReportNodesOfOneName)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A[0]"},{"path":"A[1]"}],"target":"A")"),
              R"(2:52 ambiguous-node: target: several nodes are called "A": give a number,)"
              R"( as in "A[0]")"
              "\n");
}

TEST(DocumentProblems, ReportEachUnknownPortOnce)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A","outputs":["x"]},{"path":"B"}],)"
                         "\n"
                         R"("parameters":[],"edges":["A.x -> B.y","A.z -> B.y","p -> B.q"])"),
              R"(3:26 unknown-port: "A.x -> B.y": "B" has no input "y")"
              "\n"
              R"(3:39 unknown-port: "A.z -> B.y": "A" has no output "z")"
              "\n"
              R"(3:52 unknown-port: "p -> B.q": the renderer has no parameter "p")"
              "\n"
              R"(3:52 unknown-port: "p -> B.q": "B" has no input "q")"
              "\n");
}

TEST(DocumentProblems, ReportPortsOfOneName)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A","outputs":["x","x"]}],"outputs":["o"],)"
                         "\n"
                         R"("edges":["A.x -> o","A.x[2] -> o"])"),
              R"(3:10 ambiguous-port: "A.x -> o": "A" has several outputs called "x": give )"
              R"(a number, as in "x[0]")"
              "\n"
              R"(3:21 unknown-port: "A.x[2] -> o": "A" has no output "x[2]")"
              "\n");
}

TEST(DocumentProblems, ReportEdgesBetweenUnrelatedNodes)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A","outputs":["x"]},{"path":"B"},{"path":"B/C",)"
                         R"("inputs":["y"]}],)"
                         "\n"
                         R"("edges":["A.x -> B/C.y"])"),
              R"(3:10 unrelated-nodes: "A.x -> B/C.y": the nodes are neither siblings nor )"
              R"(a group and its child)"
              "\n");
}

TEST(DocumentProblems, ReportInputsFedTwice)
{
    EXPECT_EQ(
        problemsOf(R"("nodes":[{"path":"A","outputs":["x","z"]},{"path":"B","inputs":["y"]}],)"
                   "\n"
                   R"("edges":["A.x -> B.y","A.z -> B.y"])"),
        R"(3:23 already-fed: "A.z -> B.y": B.y is already fed by A.x)"
        "\n");
}

TEST(DocumentProblems, ReportOutputsThatLeaveTheirGroup)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A","outputs":["x"]},{"path":"B","inputs":["y"]}],)"
                         R"("outputs":["o"],)"
                         "\n"
                         R"("edges":["A.x -> o","A.x -> B.y"])"),
              R"(3:21 leaves-group: "A.x -> B.y": A.x already feeds o of its group; list its )"
              R"(edges to siblings before that one)"
              "\n");
}

TEST(DocumentProblems, ReportACycleAtAGroup)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A","inputs":["i"],"outputs":["o"]},{"path":"G",)"
                         R"("inputs":["i"],"outputs":["o"]},{"path":"G/B","inputs":["i"],)"
                         R"("outputs":["o"]}],)"
                         "\n"
                         R"("edges":["A.o -> G.i","G.i -> G/B.i","G/B.o -> G.o",)"
                         "\n"
                         R"("G.o -> A.i"])"),
              R"(4:1 cycle: "G.o -> A.i": this edge closes the cycle G.o -> A.i -> A.o -> G.i -> )"
              R"(G.o)"
              "\n");
}

TEST(DocumentProblems, ReportEdgesFromANodeToItself)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A","inputs":["i"],"outputs":["o"]}],)"
                         R"("edges":["A.o -> A.i"])"),
              R"(2:64 cycle: "A.o -> A.i": this edge closes the cycle A.o -> A.i -> A.o)"
              "\n");
}

TEST(DocumentProblems, ReportUnknownKeysOfNodes)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A","input":[]}])"),
              R"(2:22 unknown-key: there is no key "input" here, only enabled, groups,)"
              R"( inputs, outputs, pass, path, value)"
              "\n");
}

TEST(DocumentProblems, ReportOutputsFedTwice)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A","outputs":["x"]},{"path":"B","outputs":["x"]}],)"
                         R"("outputs":["o"],)"
                         "\n"
                         R"("edges":["A.x -> o","B.x -> o"])"),
              R"(3:21 already-fed: "B.x -> o": o is already fed by A.x)"
              "\n");
}

TEST(DocumentProblems, ReportInputsFedTwiceFromOutside)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A","inputs":["x"]}],"parameters":["p","q"],)"
                         "\n"
                         R"("edges":["p -> A.x","q -> A.x"])"),
              R"(3:21 already-fed: "q -> A.x": A.x is already fed by p)"
              "\n");
}

TEST(DocumentProblems, ReportThePathOfACycleThroughGroups)
{
    EXPECT_EQ(problemsOf(R"("nodes":[{"path":"A","inputs":["i"],"outputs":["o"]},{"path":"G",)"
                         R"("inputs":["i"],"outputs":["o"]},{"path":"G/B","inputs":["i"],)"
                         R"("outputs":["o"]},{"path":"C","inputs":["i"],"outputs":["o"]}],)"
                         "\n"
                         R"("edges":["A.o -> G.i","G.i -> G/B.i","G/B.o -> G.o","G.o -> C.i",)"
                         "\n"
                         R"("C.o -> A.i"])"),
              R"(4:1 cycle: "C.o -> A.i": this edge closes the cycle C.o -> A.i -> A.o -> G.i -> )"
              R"(G/B.i -> G/B.o -> G.o -> C.i -> C.o)"
              "\n");
}

TEST(DocumentProblems, StayOnOneLine)
{
    EXPECT_EQ(problemsOf(R"("target":"A\n\u0007%1")"),
              R"(2:10 unknown-node: target: there is no node "A%0A%07%1")"
              "\n");
}
