#include "plot/drawing/DrawingApplication.h"

#include <session/text/SessionErrors.h>

#include <QApplication>
#include <QFile>
#include <QRawFont>
#include <QTemporaryDir>

#include <clocale>
#include <cstdlib>
#include <iostream>

namespace {
/** QApplication keeps a reference to these. */
int argumentCount = 1;
char programName[] = "surrogate";
char* arguments[] = {programName, nullptr};

constexpr int fileFailed = 5;

/** Qt ends the process if its platform cannot be started: at least with a sentence. Its warnings
 * mean nothing to the user. */
void reportFatal(QtMsgType type, const QMessageLogContext&, const QString&)
{
    if (type == QtFatalMsg) {
        const char* const platform = std::getenv("QT_QPA_PLATFORM");
        std::cerr << "surrogate: Pictures cannot be drawn on the platform \""
                  << (platform == nullptr ? "" : platform)
                  << "\"; leave QT_QPA_PLATFORM unset or set it to offscreen.\n";
        std::_Exit(fileFailed);
    }
}
} // namespace

DrawingApplication::DrawingApplication()
{
    if (QCoreApplication::instance() == nullptr) {
        const bool isUsersChoice = std::getenv("QT_QPA_PLATFORM") != nullptr;
        if (!isUsersChoice) {
            qputenv("QT_QPA_PLATFORM", "offscreen");
        }
        // Qt looks for displays in the folder that this variable names, and leaves one behind in
        // TMPDIR where none is named.
        const QTemporaryDir noDisplays;
        const bool isFolderNamed = std::getenv("XDG_RUNTIME_DIR") != nullptr;
        if (!isFolderNamed) {
            qputenv("XDG_RUNTIME_DIR", QFile::encodeName(noDisplays.path()));
        }
        const QtMessageHandler before = qInstallMessageHandler(reportFatal);
        application = std::make_unique<QApplication>(argumentCount, arguments);
        qInstallMessageHandler(before);
        if (!isFolderNamed) {
            qunsetenv("XDG_RUNTIME_DIR");
        }
        std::setlocale(LC_NUMERIC, "C");
    }
    // Without a font Qt draws boxes, or nothing; a QFont has a name all the same.
    if (QRawFont::fromFont(QFont()).familyName().isEmpty()) {
        throw FileError("No font is installed, and pictures need one for their texts: install "
                        "a font package such as fonts-dejavu-core.");
    }
}

DrawingApplication::~DrawingApplication() = default;
