// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_DOCUMENTSYNTAX_H
#define KESTRIN_ORV_INSPECT_DOCUMENTSYNTAX_H

#include "Document/JsonText.h"

#include <Kestrin/Orv/Inspect/Document.h>

#include <initializer_list>
#include <vector>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// The keys that an object of one kind may have, with the items of their values.
class DocumentMembers
{
public:
    /// The item of a value; -1 if the object does not have the key.
    int operator[](const char* key) const;

private:
    friend class DocumentSyntax;

    struct Member
    {
        QLatin1String key;
        int value = -1;
    };
    std::vector<Member> members;
};

/// Reads objects, lists, strings and numbers from a JSON text, and collects the problems. It knows
/// JSON and nothing of graphs.
///
/// A value is named by its item in the text. A query that reports a problem says in its `what` how
/// the problem names the value.
class DocumentSyntax
{
public:
    explicit DocumentSyntax(const JsonText& json)
        : text(json)
    {
    }

    const JsonText& json() const { return text; }
    JsonText::Kind kind(int item) const { return text.kind(item); }
    QString string(int item) const { return text.string(item); }
    Place place(int item) const { return text.place(text.item(item).begin); }

    /// Reports a problem at the place of an item.
    void report(int item, const char* code, const QString& problem);
    /// Reports that a value has the wrong type, and the one that it has.
    void reportType(int item, const char* what, const char* expected);
    void reportMissingKey(int object, const char* key);
    void reportDuplicateKeys();
    bool hasProblems() const { return !found.empty(); }
    /// All problems, in the order of their places.
    QVector<Problem> problems() const;

    /// Whether a value is an object, a list or a string. Reports it if it is not.
    bool expect(int item, JsonText::Kind expected, const char* what);
    bool readString(int item, const char* what, QString& value);
    /// Reads a whole number.
    bool readInt(int item, const char* what, int& number);

    /// The values of some keys of an object. Of a duplicate key, the first value.
    DocumentMembers members(int object, std::initializer_list<const char*> keys) const;
    /// Reports the keys of an object that are not among the known ones.
    void reportUnknownKeys(int object, const DocumentMembers& known);
    /// As members() and reportUnknownKeys().
    DocumentMembers readMembers(int object, std::initializer_list<const char*> keys);

    /// Calls \p read with each element of a list. An item of -1 is an empty list.
    /// \return false if the value is not a list.
    template<typename Read>
    bool readList(int item, const char* what, const Read& read)
    {
        if (item < 0)
            return true;
        if (!expect(item, JsonText::Array, what))
            return false;
        const int end = text.item(item).next;
        for (int element = item + 1; element < end; element = text.item(element).next)
            read(element);
        return true;
    }

private:
    struct Found
    {
        int offset;
        Problem problem;
    };

    const JsonText& text;
    std::vector<Found> found;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
