#pragma once

#include <QString>
#include <expected>

/// Makes `thalvorn://` links of this user open this very program file: for a build that was not installed. An installed
/// program is known by its own desktop file. Done and undone by a switch in the settings, never by itself.
namespace thalvorn {

/// The two files of the user's desktop that are written; by default those of the XDG base directories.
struct LinkRegistrationFiles {
  QString desktopFile;   ///< `$XDG_DATA_HOME/applications/org.thalvorn.Thalvorn.Links.desktop`
  QString mimeAppsList;  ///< `$XDG_CONFIG_HOME/mimeapps.list`

  static LinkRegistrationFiles ofUser();
};

/// Writes the desktop file and makes it the default for the scheme. Each file is replaced whole or not at all, and
/// whatever else the user's list says is kept as it is.
std::expected<void, QString> registerLinks(const QString& programPath,
                                           const LinkRegistrationFiles& files = LinkRegistrationFiles::ofUser());

/// Takes the registration back.
std::expected<void, QString> unregisterLinks(const LinkRegistrationFiles& files = LinkRegistrationFiles::ofUser());

/// True when links open `programPath` by a registration made here.
bool linksRegistered(const QString& programPath, const LinkRegistrationFiles& files = LinkRegistrationFiles::ofUser());

/// The text of a mimeapps.list with `desktopId` as the default for a MIME type, or, with an empty `desktopId`, without
/// a default for it. Every other line stays as it is.
QString withDefaultApplication(const QString& list, const QString& mimeType, const QString& desktopId);

/// A program path as the value of a desktop file's Exec key, followed by the field code for an address.
QString execLine(const QString& programPath);

}  // namespace thalvorn
