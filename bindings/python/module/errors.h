// The service's exceptions as those of the package.
// SPDX-License-Identifier: MIT
#pragma once

namespace pelmora::python {

// From now on a C++ exception of Pelmora arrives in Python as the class of the same name in
// pelmora.errors.
void translateErrors();

}  // namespace pelmora::python
