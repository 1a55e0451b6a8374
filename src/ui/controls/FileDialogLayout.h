#pragma once

class QFileDialog;

namespace bomparser {

/// Makes a file dialog that is not the platform's own one so large that nothing in it is cut: its
/// places and the columns of its files.
void LayOutFileDialog(QFileDialog& dialog);

}  // namespace bomparser
