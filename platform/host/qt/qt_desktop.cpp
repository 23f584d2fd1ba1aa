// The file dialog, the document opener and the bell.
#include "platform/host/qt/qt_internal.h"
#include "platform/host/qt/qt_server.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QLineEdit>
#include <QProcess>
#include <QStandardPaths>
#include <QTreeView>
#include <cstring>

namespace qthost {

namespace {

// A name that was typed goes to the program also when there is no such file, as with the dialog of Windows: the
// program has its own messages for it, and finds names without regard to letter case.
//
// What stands in the field is what is chosen; the library's own answer can begin with the folder that is shown.
class OpenDialog : public QFileDialog {
  public:
    using QFileDialog::QFileDialog;
    QString chosen;

  protected:
    void accept() override
    {
        auto* field = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        QString name = field != nullptr ? field->text() : QString();
        if (name.isEmpty()) {
            QFileDialog::accept();
            return;
        }
        if (name == QLatin1String("~") || name.startsWith(QLatin1String("~/"))) {
            name.replace(0, 1, QDir::homePath());
        }
        const QString path = QDir::cleanPath(directory().absoluteFilePath(name));
        if (QFileInfo(path).isDir()) {
            setDirectory(path);
            field->clear();
        } else {
            chosen = path;
            done(Accepted);
        }
    }
};

} // namespace

int ChooseFile(const HostFileRequest* request, char* path, int size)
{
    if (SessionEnded()) {
        return 0;
    }
    ReleaseHeldKeys();
    QWidget* owner = request->owner != nullptr ? FromHandle(request->owner)->top : nullptr;
    QString filter = QString::fromUtf8(request->filterText != nullptr ? request->filterText : "");
    const QString pattern = QString::fromUtf8(request->filterPattern != nullptr ? request->filterPattern : "*");
    if (!filter.contains(QLatin1Char('(') + pattern + QLatin1Char(')'))) {
        filter += QStringLiteral(" (%1)").arg(pattern);
    }

    OpenDialog dialog(owner, QString::fromUtf8(request->title != nullptr ? request->title : ""),
                      QFile::decodeName(request->folder != nullptr ? request->folder : ""));
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setOption(QFileDialog::ReadOnly); // choosing a map must not be able to delete or rename one
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilter(filter);
    if (auto* list = dialog.findChild<QTreeView*>()) {
        list->header()->setSectionResizeMode(QHeaderView::ResizeToContents); // nothing elided
    }
    const bool accepted = dialog.exec() == QDialog::Accepted;
    dialog.hide();
    if (owner != nullptr) {
        owner->activateWindow(); // where no window manager hands the focus back
    }
    if (!accepted || dialog.chosen.isEmpty()) {
        return 0;
    }
    const QByteArray name = QFile::encodeName(dialog.chosen);
    if (name.size() >= size) {
        return 0;
    }
    std::memcpy(path, name.constData(), static_cast<size_t>(name.size()) + 1);
    return 1;
}

void Beep()
{
    QApplication::beep();
    FlushDisplay();
}

int OpenDocument(const char* path)
{
    // A search path may have the current folder in it, which is that of the maps: nothing that lies there is run.
    QStringList folders = qEnvironmentVariable("PATH").split(QLatin1Char(':'));
    folders.removeIf([](const QString& folder) { return !QDir::isAbsolutePath(folder); });
    const QString opener = QStandardPaths::findExecutable(QStringLiteral("xdg-open"), folders);
    if (folders.isEmpty() || opener.isEmpty()) {
        return 1;
    }
    const QFileInfo document(QFile::decodeName(path));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PATH"), folders.join(QLatin1Char(':')));
    QProcess process;
    process.setProgram(opener);
    process.setArguments({document.absoluteFilePath()});
    process.setWorkingDirectory(document.absolutePath());
    process.setProcessEnvironment(environment);
    return process.startDetached() ? 0 : 1;
}

} // namespace qthost
