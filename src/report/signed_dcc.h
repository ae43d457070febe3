// An XML signature inside a digital calibration certificate.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora::report {

// The certificate with an enveloped XMLDSig signature over all of it, made and then verified by the
// program xmlsec1. Any later change breaks the signature, even one of blanks.
//
// keyFile: a private key (RSA or ECDSA), certificateFile: its X.509 certificate, both PEM.
// Errors: Unusable if xmlsec1 is not installed; BadData if the key is encrypted, if xmlsec1 refuses
//         key or certificate, or if the certificate belongs to another key.
[[nodiscard]] std::string signedDcc(const std::string& xml, const std::string& keyFile,
                                    const std::string& certificateFile);

}  // namespace pelmora::report
