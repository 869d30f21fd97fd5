#pragma once

#include <QString>
#include <QStringList>

#include <functional>

// What stands at a path, judged by its first bytes rather than its name: a renamed
// CSV or GeoPackage must not be taken for a workbook, read as one or written over.
struct FileKind
{
    enum Kind {
        Missing,
        Folder,
        Empty,
        Workbook,           // an Office Open XML spreadsheet package
        BinaryWorkbook,     // .xlsb
        OpenDocument,       // .ods and the other OpenDocument files
        EncryptedWorkbook,  // a workbook with a password to open
        LegacyWorkbook,     // Excel 97-2003 and other compound documents
        OtherZip,
        GeoPackage,
        Sqlite,
        BinaryDxf,
        Text,
        Binary,
    };

    Kind kind = Missing;
    // For messages: "a GeoPackage", "a text file (CSV or similar)", "a folder"; the
    // workbook kinds that cannot be read add why ("..., which cannot be read").
    QString description;

    bool isWorkbook() const { return kind == Workbook; }
    bool exists() const { return kind != Missing; }
};

FileKind inspectFile(const QString& path);

// Whether two paths name the same file (through links and ".." alike); a path that
// does not exist yet is compared by its folder and name.
bool isSameFile(const QString& first, const QString& second);

// How a command is about to write a file.
enum class OutputUse {
    Replace,    // a new file made whole, replacing what stands there
    Rewrite,    // an existing workbook read and saved again with changes
};

// Empty when the command may write path; otherwise the reason, naming the file, for
// which it must leave the file alone: path is one of the inputs, a folder, in a
// folder that does not exist or cannot be written, a read-only file, or a file that
// is not a workbook (allowed to be replaced only with overwrite, and never rewritten).
QString outputRefusal(const QString& path, const QStringList& inputs, OutputUse use,
                      bool overwrite);

// Empty when path holds a workbook the engine can read; otherwise why not, naming the
// file and what it is: "data.csv: a text file (CSV or similar), not a workbook".
QString workbookInputRefusal(const QString& path);

// Keeps the reasons the workbook engine logs for failed saves, instead of printing
// them, so that the command's own message can give them, and prints what a save had
// to change to stay within Excel's limits as a note. Called once at start.
void keepSaveErrorsForMessages();

// The reason the engine logged for the last failed save at path; empty when no save
// at path failed.
QString loggedSaveFailure(const QString& path);

// Why a save at path did not land: the engine's reason where it logged one, otherwise
// asked of the file system after the fact ("permission denied", "no space left on the
// device", ...). Never empty.
QString saveFailureReason(const QString& path);

// Runs rewrite, a library call that replaces the workbook at path in place and may
// delete it before it saves the new one. A copy of the old file is kept beside it
// (PATH.old-XXXXXX) while the call runs, put back when the call fails, its save was
// refused or it left no workbook, and removed otherwise; so even a process killed in
// between leaves the old content on disk. False with the reason, naming the file.
bool rewriteKeepingOldFile(const QString& path, const std::function<bool()>& rewrite,
                           QString* reason);
