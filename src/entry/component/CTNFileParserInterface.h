#pragma once

#include <string>

/// The component as hosts see it. Its one useful member needs no object, and none can be made.
class [[gnu::visibility("default")]] CTNFileParserInterface {
 public:
  CTNFileParserInterface(const CTNFileParserInterface& other);
  /// Copies nothing.
  CTNFileParserInterface& operator=(const CTNFileParserInterface& other);

  /// Opens the dialog and runs it until the user closes it. Always returns 1, whatever the user
  /// did; the text is neither read nor written.
  ///
  /// To be called by the thread of the user interface. The application object is the host's; where
  /// the host has none, there is one for as long as the call takes. Returns at once where windows
  /// cannot be shown: without a display, or with an application object that is not made for them.
  /// So does a call while the dialog is open.
  ///
  /// While the dialog is open the host's help path is another one.
  static int DisplayFileParserAsImportBOM(std::string & result);

 private:
  CTNFileParserInterface();
  virtual ~CTNFileParserInterface();
};

namespace bomparser {

/// The name under which a host finds DisplayFileParserAsImportBOM in the loaded module, and what it
/// is there. It is the compiler's name for it, which is the same for all that build for one system.
constexpr const char* kComponentDisplaySymbol =
    "_ZN22CTNFileParserInterface28DisplayFileParserAsImportBOM"
    "ERNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE";
using ComponentDisplay = int (*)(std::string& result);

}  // namespace bomparser
