// What a connection says about a failure that the failed call itself kept back.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>

struct IDispatch;

namespace pelmora::ado {

// `told` with what it lacks: a number that is 0, a description that is empty. They come from the
// first failure in the connection's Errors; one of another number belongs to an earlier call and is
// left alone. What nobody tells is DISP_E_EXCEPTION, and a description that names the member.
//
// `connection` may be null.
[[nodiscard]] Error completed(const Error& told, IDispatch* connection, const wchar_t* member);

}  // namespace pelmora::ado
