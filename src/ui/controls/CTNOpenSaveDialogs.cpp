#include "ui/controls/CTNOpenSaveDialogs.h"

#include "ui/controls/DisplayText.h"
#include "ui/controls/FileDialogLayout.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QStringList>

namespace bomparser {
namespace {

/// The filters of a text "A|p|B|q||" as Qt wants them. Their own texts end in brackets that users
/// know; the pattern stands in brackets of its own behind them, which are not shown.
QStringList NameFilters(Msg filter) {
  QStringList filters;
  const QStringList parts = MessageText(filter).split(u'|', Qt::SkipEmptyParts);
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    // Here this pattern would miss files that have no extension.
    const QString pattern = parts[i + 1] == u"*.*" ? QStringLiteral("*") : parts[i + 1];
    filters.append(QStringLiteral("%1 (%2)").arg(parts[i], pattern));
  }
  return filters;
}

}  // namespace

CTNOpenSaveDialog::CTNOpenSaveDialog(const Kind& kind, FileDialogUse use, const std::string& folder,
                                     QWidget* parent)
    : QFileDialog(parent) {
  const bool opens = use == FileDialogUse::Open;
  // The platform's own dialogs choose their captions themselves.
  setOption(DontUseNativeDialog);
  setOption(HideNameFilterDetails);
  setAcceptMode(opens ? AcceptOpen : AcceptSave);
  setFileMode(opens ? ExistingFile : AnyFile);
  setNameFilters(NameFilters(opens ? kind.openFilter : kind.saveFilter));
  if (!opens || kind.openAddsExtension) m_extension = MessageText(Msg::XmlExtension);
  setDefaultSuffix(m_extension);
  const QString start = QFile::decodeName(folder.c_str());
  setDirectory(QFileInfo(start).isDir() ? start : QDir::currentPath());
  LayOutFileDialog(*this);

  const QString standard = windowTitle();
  const bool replaced =
      standard.compare(MessageText(kind.replacedCaption), Qt::CaseInsensitive) == 0;
  setWindowTitle(MessageText(kind.captionPrefix) +
                 (replaced ? MessageText(kind.ownCaption) : standard));
}

void CTNOpenSaveDialog::SetInitialName(const std::string& name) {
  m_proposed = name;
  m_proposedShown = QFile::decodeName(name.c_str());
  selectFile(m_proposedShown);
}

std::string CTNOpenSaveDialog::GetPathName() const {
  const QStringList files = selectedFiles();
  if (files.isEmpty()) return {};
  // A name may hold bytes that no text can hold. Taken as it was proposed it is the same file.
  if (files.front() == m_proposedShown) return m_proposed;
  return QFile::encodeName(files.front()).toStdString();
}

std::string CTNOpenSaveDialog::GetFolder() const {
  const QFileInfo file(QFile::decodeName(GetPathName().c_str()));
  return QFile::encodeName(file.absolutePath()).toStdString();
}

bool CTNOpenSaveDialog::NamesExistingFile() const {
  const auto* edit = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
  return edit != nullptr && QFileInfo(directory().filePath(edit->text())).isFile();
}

void CTNOpenSaveDialog::accept() {
  // A file to read that has no extension is meant itself.
  const bool complete = acceptMode() == AcceptOpen && NamesExistingFile();
  setDefaultSuffix(complete ? QString() : m_extension);
  QFileDialog::accept();
}

CTNTemplateOpenSaveDialog::CTNTemplateOpenSaveDialog(FileDialogUse use, const std::string& folder,
                                                     QWidget* parent)
    : CTNOpenSaveDialog({.captionPrefix = Msg::TemplateCaptionPrefix,
                         .replacedCaption = Msg::StandardOpenCaption,
                         .ownCaption = Msg::LoadCaption,
                         .openFilter = Msg::TemplateOpenFilter,
                         .saveFilter = Msg::TemplateSaveFilter,
                         .openAddsExtension = true},
                        use, folder, parent) {}

CTNInFileOpenSaveDialog::CTNInFileOpenSaveDialog(FileDialogUse use, const std::string& folder,
                                                 QWidget* parent)
    : CTNOpenSaveDialog({.captionPrefix = Msg::InputFileCaptionPrefix,
                         .replacedCaption = Msg::StandardSaveCaption,
                         .ownCaption = Msg::OutputEntityListCaption,
                         .openFilter = Msg::InputFileFilter,
                         .saveFilter = Msg::TemplateSaveFilter,
                         .openAddsExtension = false},
                        use, folder, parent) {}

}  // namespace bomparser
