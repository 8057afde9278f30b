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

/// A JSON text and where everything in it stands, which QJsonDocument does not tell.
///
/// The values are listed in the order of the text: a container is followed by what it holds, a key
/// by its value. No recursion: a text may be nested as deep as it likes, and is refused.
class JsonText
{
public:
    enum Kind { Object, Array, String, Number, True, False, Null };

    struct Item
    {
        int begin; ///< offset of its first byte
        int end;   ///< offset behind its last byte
        int next;  ///< the item behind it and all that it holds
        Kind kind;
    };

    /// Nothing is nested deeper.
    static constexpr int kMaxDepth = 500;

    explicit JsonText(QByteArray json);

    /// What is wrong with the text as JSON; an empty code if nothing is.
    const Problem& problem() const { return failure; }
    Place place(int offset) const;

    /// The document is item 0.
    const Item& item(int index) const { return items[static_cast<std::size_t>(index)]; }
    int numItems() const { return static_cast<int>(items.size()); }
    Kind kind(int index) const { return item(index).kind; }
    /// What stands in a string.
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
    std::vector<Place> milestones; // the place of every so many bytes
    std::vector<Item> items;
    std::vector<int> open; // the containers around `pos`
    int pos = 0;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
