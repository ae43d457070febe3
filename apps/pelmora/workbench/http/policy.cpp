// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/http/policy.h"

namespace pelmora::cli::http {

Response secured(Response response) {
  static const Fields always{
      {"Content-Security-Policy",
       "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src "
       "'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'; "
       "require-trusted-types-for 'script'; trusted-types 'none'"},
      {"X-Content-Type-Options", "nosniff"},
      {"X-Frame-Options", "DENY"},
      {"Referrer-Policy", "no-referrer"},
      {"Cross-Origin-Resource-Policy", "same-origin"},
      {"Cross-Origin-Opener-Policy", "same-origin"},
      {"Cache-Control", "no-store"}};
  response.headers.insert(response.headers.end(), always.begin(), always.end());
  return response;
}

}  // namespace pelmora::cli::http
