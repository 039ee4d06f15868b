#include "update/ForeignText.h"

namespace ambertide {

QString displayableText(QString text)
{
    text.truncate(longestForeignText);
    text.removeIf([](QChar each) {
        const bool turnsDirection =
            (each >= u'\u202a' && each <= u'\u202e') || (each >= u'\u2066' && each <= u'\u2069');
        return turnsDirection || (each.category() == QChar::Other_Control && each != u'\n' && each != u'\t');
    });
    return text;
}

} // namespace ambertide
