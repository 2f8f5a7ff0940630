#pragma once

#include <QString>
#include <QUrl>
#include <expected>
#include <string>

#include "store/attachments.h"

/// Photos of tasks and services: files in the attachment store, named in the records.
namespace thalvorn::app {

/// Copies a picture in and returns the path for the record, or a sentence for the form.
std::expected<std::string, QString> keepPhoto(const AttachmentStore& attachments, const QUrl& picture);

/// Where a view finds a kept photo; empty when it is not on this computer.
QString photoAddress(const AttachmentStore& attachments, const std::string& path);

}  // namespace thalvorn::app
