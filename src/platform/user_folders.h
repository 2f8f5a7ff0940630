#pragma once

#include <QString>
#include <expected>

/// Where the program keeps a user's files, and how it keeps them from other users of the computer.
/// Errors are sentences for the user: what failed, where, and what to do.
namespace thalvorn {

/// The folder of the user's own data, `$XDG_DATA_HOME/thalvorn` (`~/.local/share/thalvorn`), created with mode 0700.
std::expected<QString, QString> dataFolder();

/// The store that the desktop program and the command line use when none is named: a file in `dataFolder`.
std::expected<QString, QString> userStoreFile();

/// A folder for sockets that lives at most as long as the login: `$XDG_RUNTIME_DIR/thalvorn`, else
/// `/run/user/<uid>/thalvorn`, else `/tmp/thalvorn-<uid>`; mode 0700. A folder that belongs to someone else, or that
/// others may enter, is never used. `longestName` is the length of the longest name to be placed in it: a folder
/// whose path would not leave room for it in a socket address is passed over.
std::expected<QString, QString> runtimeFolder(qsizetype longestName = 0);

/// Makes sure that the folder exists and that nobody but its owner may enter it (mode 0700). Parents are created too.
std::expected<void, QString> ensurePrivateFolder(const QString& path);

/// Sets an existing file's mode to 0600.
std::expected<void, QString> restrictToOwner(const QString& path);

/// True when the file or folder exists and neither its group nor others have any right to it.
bool isPrivate(const QString& path);

/// One spelling for every way to name the same file: absolute, without symbolic links in its folder. The file itself
/// may not exist yet.
QString canonicalStorePath(const QString& path);

}  // namespace thalvorn
