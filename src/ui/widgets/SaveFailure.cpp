#include "ui/widgets/SaveFailure.h"

#include <QObject>

namespace mirovane {

namespace {

QString remedy(const FileError& error) {
    switch (error.kind) {
    case FileError::Kind::NotFound:
        return QObject::tr(
            "The folder is gone or the network share is not connected. Bring it back, or save elsewhere "
            "with File, Save As.");
    case FileError::Kind::Denied:
        return QObject::tr(
            "You may not write there. Save elsewhere with File, Save As, or have the file's permissions "
            "changed.");
    case FileError::Kind::Locked:
        return QObject::tr("Another station is reading or writing it. Try again in a moment.");
    case FileError::Kind::NoSpace:
        return QObject::tr("Make room on the disk and try again, or save elsewhere with File, Save As.");
    case FileError::Kind::Changed:
        return QObject::tr(
            "Your changes are kept here, and saved as soon as what another station saved there can be "
            "read. Save a copy elsewhere with File, Save As, before you leave.");
    case FileError::Kind::TooLarge:
        return QObject::tr("Remove devices, or divide the floor into two datafiles.");
    case FileError::Kind::NotAnswering:
        return QObject::tr(
            "Your changes are saved as soon as the share answers again. Or save elsewhere with "
            "File, Save As.");
    case FileError::Kind::Other:
        break;
    }
    return QObject::tr("Try again, or save elsewhere with File, Save As.");
}

} // namespace

std::string saveFailureText(const FileError& error) {
    return QObject::tr("The datafile could not be saved.").toStdString() + "\n\n" +
           asSentence(error.sentence) + "\n\n" + remedy(error).toStdString();
}

std::string asSentence(std::string text) {
    if (!text.empty() && text.front() >= 'a' && text.front() <= 'z')
        text.front() = static_cast<char>(text.front() - 'a' + 'A');
    if (!text.empty() && text.back() != '.' && text.back() != '!')
        text += '.';
    return text;
}

} // namespace mirovane
