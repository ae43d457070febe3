// SPDX-License-Identifier: MIT
#include "report/signed_dcc.h"

#include "base/base64.h"
#include "report/outside_program.h"
#include "report/scratch_folder.h"

#include <pelmora/calibration/failure.h>

#include <fstream>
#include <iterator>

namespace pelmora::report {
namespace {

using calibration::BadData;

constexpr std::string_view rootEnd = "</dcc:digitalCalibrationCertificate>";

std::string fileText(const std::string& path, const char* what) {
  std::ifstream stream(path, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  if (text.find("-----BEGIN ") == std::string::npos)
    throw BadData({"'" + path + "' is not " + what + " in PEM form", path, "give another file"});
  return text;
}

// The bytes between the first BEGIN and END lines.
std::string pemBytes(const std::string& pem) {
  const auto begin = pem.find('\n', pem.find("-----BEGIN "));
  if (begin == std::string::npos) return {};
  return bytesOfBase64(std::string_view(pem).substr(begin, pem.find("-----END", begin) - begin));
}

// Whether the public key in an X.509 certificate is one on an elliptic curve: id-ecPublicKey,
// 1.2.840.10045.2.1 (RFC 5480, 2.1.1).
bool isOfEllipticCurve(const std::string& certificatePem) {
  constexpr std::string_view identifier("\x06\x07\x2A\x86\x48\xCE\x3D\x02\x01", 9);
  return pemBytes(certificatePem).find(identifier) != std::string::npos;
}

// Source: XML Signature Syntax and Processing 1.1; identifiers of RFC 9231.
std::string signatureTemplate(bool isEcdsa) {
  const std::string canonical = "\"http://www.w3.org/2001/10/xml-exc-c14n#\"";
  const std::string method = std::string("\"http://www.w3.org/2001/04/xmldsig-more#") +
                             (isEcdsa ? "ecdsa" : "rsa") + "-sha256\"";
  return "<ds:Signature xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\">\n<ds:SignedInfo>\n"
         "<ds:CanonicalizationMethod Algorithm=" +
         canonical + "/>\n<ds:SignatureMethod Algorithm=" + method +
         "/>\n<ds:Reference URI=\"\">\n<ds:Transforms>\n"
         "<ds:Transform Algorithm=\"http://www.w3.org/2000/09/xmldsig#enveloped-signature\"/>\n"
         "<ds:Transform Algorithm=" +
         canonical +
         "/>\n</ds:Transforms>\n"
         "<ds:DigestMethod Algorithm=\"http://www.w3.org/2001/04/xmlenc#sha256\"/>\n"
         "<ds:DigestValue/>\n</ds:Reference>\n</ds:SignedInfo>\n<ds:SignatureValue/>\n"
         "<ds:KeyInfo>\n<ds:X509Data/>\n</ds:KeyInfo>\n</ds:Signature>\n";
}

// The last line that is not empty.
std::string lastLine(std::string text) {
  while (text.ends_with('\n')) text.pop_back();
  const auto start = text.rfind('\n');
  return start == std::string::npos ? text : text.substr(start + 1);
}

}  // namespace

std::string signedDcc(const std::string& xml, const std::string& keyFile,
                      const std::string& certificateFile) {
  // For an encrypted key, xmlsec1 would ask for a pass phrase that nobody can give.
  if (fileText(keyFile, "a private key").find("ENCRYPTED") != std::string::npos)
    throw BadData({"the key in '" + keyFile + "' is encrypted", keyFile,
                   "give it without a pass phrase: 'openssl pkey -in KEY.pem -out PLAIN.pem'"});
  const bool isEcdsa = isOfEllipticCurve(fileText(certificateFile, "a certificate"));
  const auto end = xml.rfind(rootEnd);
  if (end == std::string::npos)
    throw BadData({"this is not a digital calibration certificate", "", "write one first"});
  // xmlsec1 takes both paths as one argument, separated by a comma.
  for (const std::string* path : {&keyFile, &certificateFile}) {
    if (path->find(',') != std::string::npos)
      throw BadData({"the path '" + *path + "' has a comma", *path, "rename the file"});
  }
  const ScratchFolder folder;
  std::string unsignedXml = xml;
  unsignedXml.insert(end, signatureTemplate(isEcdsa));
  const std::string input = folder.write("unsigned.xml", unsignedXml);
  const std::string output = folder.file("signed.xml");
  const ProgramEnd made = runProgram({"xmlsec1", "--sign", "--privkey-pem",
                                      keyFile + "," + certificateFile, "--output", output, input},
                                     "xmlsec1");
  if (made.exitCode != 0)
    throw BadData({"xmlsec1 cannot sign with this key and certificate: " + lastLine(made.errors),
                   keyFile, "check both files"});
  const ProgramEnd verified =
      runProgram({"xmlsec1", "--verify", "--pubkey-cert-pem", certificateFile, output}, "xmlsec1");
  if (verified.exitCode != 0)
    throw BadData({"the certificate '" + certificateFile + "' is not that of the key",
                   certificateFile, "give the certificate that belongs to the key"});
  return folder.read("signed.xml");
}

}  // namespace pelmora::report
