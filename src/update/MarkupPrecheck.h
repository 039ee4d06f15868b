#pragma once

#include <QByteArrayView>
#include <QString>

#include <optional>

namespace ambertide {

/// Looks through XML before a parser does, for what makes a parser do far more work than the text is long: a document
/// type, which is read whole before it can be refused, and tags of thousands of attributes. Returns what it found, in
/// one line. Takes the bytes for UTF-8; well-formedness is left to the parser.
std::optional<QString> problemWithMarkup(QByteArrayView xml);

} // namespace ambertide
