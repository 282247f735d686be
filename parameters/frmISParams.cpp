// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "parameters/frmISParams.h"

#include <utility>

namespace kestrel {

frmISParams::frmISParams(std::string extension_folder, QWidget* parent)
    : QDialog(parent), m_extension_folder(std::move(extension_folder)) {
    setObjectName("frmISParams");
    setWindowTitle("Kestrel");
    setWindowFlags(Qt::Window);
}

}  // namespace kestrel
