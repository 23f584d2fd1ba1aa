// The file dialog, the document opener and the bell.
#include "platform/host/qt/qt_internal.h"
#include "platform/host/qt/qt_server.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QProcess>
#include <QStandardPaths>
#include <QTreeView>
#include <cstring>

namespace qthost {

namespace {

// A name that was typed goes to the program also when there is no such file, as with the dialog of Windows: the
// program has its own messages for it, and finds names without regard to letter case.
class OpenDialog : public QFileDialog {
  public:
    using QFileDialog::QFileDialog;

  protected:
    void accept() override
    {
        const QStringList names = selectedFiles();
        if (names.size() == 1 && !QFileInfo::exists(names.front())) {
            done(Accepted);
        } else {
            QFileDialog::accept();
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
    const QStringList files = dialog.selectedFiles();
    if (!accepted || files.isEmpty()) {
        return 0;
    }
    const QByteArray name = QFile::encodeName(QDir::cleanPath(files.front()));
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
    const QString opener = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    if (opener.isEmpty()) {
        return 1;
    }
    return QProcess::startDetached(opener, {QFile::decodeName(path)}) ? 0 : 1;
}

} // namespace qthost
