// SPDX-License-Identifier: MIT
#include "bindings/com/arguments.h"

#include "adapters/ado/ado_connection.h"

namespace pelmora::com {

ConnectionPtr connectionOf(IDispatch** argument) {
  return argument == nullptr || *argument == nullptr ? nullptr : adoConnection(*argument);
}

}  // namespace pelmora::com
