// SPDX-License-Identifier: MIT
#include "bindings/com/type_description.h"

#include "bindings/com/module.h"
#include "bindings/com/pelmora_automation.h"

namespace pelmora::com {

HRESULT load(TypeDescription& types) {
  HRESULT result = loadTypeLibrary(types.library.receive());
  if (FAILED(result)) return result;
  result = types.library->GetTypeInfoOfGuid(CLSID_RawData, types.classInfo.receive());
  if (FAILED(result)) return result;
  result = types.library->GetTypeInfoOfGuid(IID__RawData, types.dispatch.receive());
  if (FAILED(result)) return result;
  constexpr UINT dualPartner = static_cast<UINT>(-1);
  HREFTYPE partner = 0;
  result = types.dispatch->GetRefTypeOfImplType(dualPartner, &partner);
  if (FAILED(result)) return result;
  return types.dispatch->GetRefTypeInfo(partner, types.vtable.receive());
}

}  // namespace pelmora::com
