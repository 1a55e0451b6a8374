#pragma once

#include <QFileDialog>
#include <cstdint>
#include <string>

namespace bomparser {

enum class Msg : std::uint32_t;

/// Whether a file dialog asks for a file to read or for one to write.
enum class FileDialogUse { Open, Save };

/// Base of the file dialogs: a caption of ours made from the standard one, which may be translated;
/// the types of files to choose from; what is added to a name without extension. A file to read
/// must exist, one that is to be overwritten is asked about.
class CTNOpenSaveDialog : public QFileDialog {
  Q_OBJECT

 public:
  /// The name that is proposed. A path with a folder shows that folder.
  void SetInitialName(const std::string& name);
  /// The chosen file, once the dialog was accepted.
  std::string GetPathName() const;
  /// The folder that it is in.
  std::string GetFolder() const;

 protected:
  /// What sets one dialog apart from another.
  struct Kind {
    Msg captionPrefix;
    Msg replacedCaption;  // The standard caption in whose place stands
    Msg ownCaption;       // this one; any other one stays.
    Msg openFilter;       // "Text|pattern|Text|pattern||"
    Msg saveFilter;
    bool openAddsExtension;
  };
  /// Starts in the folder, or in the current one when there is no such folder.
  CTNOpenSaveDialog(const Kind& kind, FileDialogUse use, const std::string& folder,
                    QWidget* parent);

  void accept() override;

 private:
  bool NamesExistingFile() const;

  QString m_extension;      // Added to a name that has none.
  std::string m_proposed;   // The name that is proposed,
  QString m_proposedShown;  // and as it is shown, which may be less.
};

/// Asks for a template to load, or for the file to save one to.
class CTNTemplateOpenSaveDialog final : public CTNOpenSaveDialog {
  Q_OBJECT

 public:
  explicit CTNTemplateOpenSaveDialog(FileDialogUse use, const std::string& folder,
                                     QWidget* parent = nullptr);
};

/// Asks for an input file to open, or for the file to write its entity list to.
class CTNInFileOpenSaveDialog final : public CTNOpenSaveDialog {
  Q_OBJECT

 public:
  explicit CTNInFileOpenSaveDialog(FileDialogUse use, const std::string& folder,
                                   QWidget* parent = nullptr);
};

}  // namespace bomparser
