// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_JSONTEXT_H
#define KESTRIN_ORV_INSPECT_JSONTEXT_H

#include <Kestrin/Orv/Inspect/Document.h>

#include <QtCore/QByteArray>
#include <QtCore/QJsonValue>
#include <QtCore/QVector>

#include <vector>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// A JSON text with the place of every value, which QJsonDocument does not keep.
///
/// The values are listed in the order of the text: a container is followed by its contents, a key
/// by its value. The text is read without recursion; one that is nested too deep is refused.
class JsonText
{
public:
    enum Kind { Object, Array, String, Number, True, False, Null };

    struct Item
    {
        int begin; ///< the offset of its first byte
        int end;   ///< the offset after its last byte
        int next;  ///< the first item after it and its contents
        Kind kind;
    };

    /// How deep objects and lists may be nested.
    static constexpr int kMaxDepth = 500;

    explicit JsonText(QByteArray json);

    /// The first syntax error; its code is empty if the text is valid JSON.
    const Problem& problem() const { return failure; }
    Place place(int offset) const;

    /// The whole document is item 0.
    const Item& item(int index) const { return items[static_cast<std::size_t>(index)]; }
    int numItems() const { return static_cast<int>(items.size()); }
    Kind kind(int index) const { return item(index).kind; }
    /// The text of a string or a key, without escapes.
    QString string(int index) const;
    QJsonValue value(int index) const;

private:
    bool checkUtf8();
    void scan();
    bool scanValue();
    bool scanString();
    bool scanNumber();
    bool scanWord(const char* word, Kind kind);
    bool openContainer(Kind kind);
    void closeContainer();
    void skipSpace();
    bool at(char c) const { return pos < text.size() && text.at(pos) == c; }
    bool atDigit() const { return pos < text.size() && text.at(pos) >= '0' && text.at(pos) <= '9'; }
    bool skipDigits();
    bool fail(const char* what);
    bool fail(const char* code, const QString& what, int offset);
    void add(Kind kind, int begin);

    QByteArray text;
    Problem failure;
    std::vector<Place> milestones; // the place of every kMilestone-th byte
    std::vector<Item> items;
    std::vector<int> open; // the open containers around `pos`
    int pos = 0;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
