#pragma once

#include <QtCore/QStringList>

/// The number at the start of a text, brought into the range of an octet, 0 to 255; "0" where there is none.
QString OctetText(const QString& zText);

/// The four numbers of the address that has just been pasted into a field which now holds zText, perhaps
/// between the digits that it held before unless zWasEmpty; they are not brought into any range. Empty where
/// no address was pasted.
QStringList PastedAddress(const QString& zText, bool zWasEmpty);
