#pragma once

#include <QDateTime>
#include <QString>
#include <QStringView>

namespace QXlsx::detail {

// The format code of a built-in number format id, or an empty text for ids without a
// fixed code (locale dependent ids keep an empty code and are judged by id alone).
QString builtinNumberFormat(int id);
// The built-in id of a format code, or -1.
int builtinNumberFormatId(QStringView code);

// True for the built-in date and time ids: 14-22, 27-36, 45-47, 50-58 (the East Asian
// ones included).
bool isBuiltinDateTimeFormat(int id);
// True for a custom code with a date or time token (y m d h s, AM/PM, ...) outside
// quotes, brackets and backslash escapes; [h], [mm] and [ss] elapsed times count.
bool isDateTimeFormatCode(QStringView code);

// Serial numbers: days since the epoch of the workbook's date system, with the time of
// day as the fraction. The 1900 system keeps the phantom 29 February 1900 (serial 60).
// True for the days Excel shows as dates: 1900-01-01 (1904-01-01 in the 1904 system)
// to 9999-12-31. Serials of other days read back as times, earlier days or plain numbers.
bool hasDateSerial(const QDate& date, bool date1904);
double toSerial(const QDateTime& dateTime, bool date1904);
double toSerial(const QDate& date, bool date1904);
double toSerial(const QTime& time);
QDateTime fromSerial(double serial, bool date1904);
// The date and the time of day of a serial, without the time zone work a local
// QDateTime costs; false for serials outside the dates a workbook can hold.
bool splitSerial(double serial, bool date1904, QDate* date, QTime* time);

} // namespace QXlsx::detail
