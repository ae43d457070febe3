// SPDX-License-Identifier: MIT
#include "base/sha256.h"

#include "base/base64.h"

#include <algorithm>
#include <bit>

namespace pelmora {
namespace {

using Words8 = std::array<std::uint32_t, 8>;

// First 32 bits of the fractional parts of the cube roots of the first 64 primes.
constexpr std::array<std::uint32_t, 64> roundConstants{
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

// The text, a bit 1, zeros, and the length in bits: a multiple of 64 bytes.
std::string padded(std::string_view text) {
  std::string message(text);
  message += '\x80';
  message.append((120 - message.size() % 64) % 64, '\0');
  const std::uint64_t bits = std::uint64_t{text.size()} * 8;
  for (int shift = 56; shift >= 0; shift -= 8) message += static_cast<char>(bits >> shift & 0xFFU);
  return message;
}

std::array<std::uint32_t, 64> schedule(std::string_view block) {
  std::array<std::uint32_t, 64> w{};
  const auto byte = [&](std::size_t i) {
    return std::uint32_t{static_cast<unsigned char>(block[i])};
  };
  for (std::size_t t = 0; t < 16; ++t) {
    const std::size_t i = 4 * t;
    w[t] = byte(i) << 24U | byte(i + 1) << 16U | byte(i + 2) << 8U | byte(i + 3);
  }
  for (std::size_t t = 16; t < 64; ++t) {
    const std::uint32_t a = w[t - 15], b = w[t - 2];
    const std::uint32_t small0 = std::rotr(a, 7) ^ std::rotr(a, 18) ^ a >> 3U;
    const std::uint32_t small1 = std::rotr(b, 17) ^ std::rotr(b, 19) ^ b >> 10U;
    w[t] = small1 + w[t - 7] + small0 + w[t - 16];
  }
  return w;
}

void addBlock(Words8& hash, std::string_view block) {
  const auto w = schedule(block);
  // Named words stay in registers, which is almost twice as fast as rotating an array.
  auto [a, b, c, d, e, f, g, h] = hash;
  for (std::size_t t = 0; t < 64; ++t) {
    const std::uint32_t big1 = std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25);
    const std::uint32_t choice = (e & f) ^ (~e & g);
    const std::uint32_t first = h + big1 + choice + roundConstants[t] + w[t];
    const std::uint32_t big0 = std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22);
    const std::uint32_t majority = (a & b) ^ (a & c) ^ (b & c);
    h = g, g = f, f = e, e = d + first;
    d = c, c = b, b = a, a = first + big0 + majority;
  }
  const Words8 mixed{a, b, c, d, e, f, g, h};
  for (std::size_t i = 0; i < hash.size(); ++i) hash[i] += mixed[i];
}

}  // namespace

std::array<std::uint8_t, 32> sha256(std::string_view text) {
  Words8 hash{0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
              0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
  const std::string message = padded(text);
  for (std::size_t at = 0; at < message.size(); at += 64)
    addBlock(hash, std::string_view(message).substr(at, 64));
  std::array<std::uint8_t, 32> bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<std::uint8_t>(hash[i / 4] >> (24 - 8 * (i % 4)));
  return bytes;
}

std::string sha256Hex(std::string_view text) {
  constexpr const char* digits = "0123456789abcdef";
  std::string hex;
  for (const std::uint8_t byte : sha256(text)) {
    hex += digits[byte >> 4U];
    hex += digits[byte & 15U];
  }
  return hex;
}

std::string sha256Base64(std::string_view text) {
  const auto bytes = sha256(text);
  return base64Text({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

}  // namespace pelmora
