// Documents encrypted as programs do it that protect them from being changed: a compound file whose password
// everybody knows.
#pragma once

#include <nettle/aes.h>
#include <nettle/sha1.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace rowlark::samples {

inline std::string LittleEndian(std::uint64_t value, std::size_t size) {
  std::string bytes;
  for (; size > 0; --size, value >>= 8) bytes += static_cast<char>(value & 0xFF);
  return bytes;
}

// Two streams, in sectors of 512 bytes: the table of sectors, the directory, the streams.
inline std::string CompoundFileOf(const std::string& info, const std::string& package) {
  constexpr std::size_t kSector = 512;
  constexpr std::uint32_t kEnd = 0xFFFFFFFE;
  const auto sectors = [](const std::string& text) { return (text.size() + kSector - 1) / kSector; };
  const auto padded = [](std::string text, std::size_t size) {
    text.resize(size, '\0');
    return text;
  };
  std::string table = LittleEndian(kEnd, 4) + LittleEndian(kEnd, 4);
  std::string directory = padded("", 128);
  std::string streams;
  const auto add = [&](std::string_view name, const std::string& content) {
    std::string entry;
    for (const char c : name) (entry += c) += '\0';
    entry = padded(entry, 116) + LittleEndian(table.size() / 4, 4) + LittleEndian(content.size(), 8);
    directory += entry;
    for (auto left = sectors(content); left > 0; --left) {
      table += LittleEndian(left == 1 ? kEnd : table.size() / 4 + 1, 4);
    }
    streams += padded(content, sectors(content) * kSector);
  };
  add("EncryptionInfo", info);
  add("EncryptedPackage", package);
  std::string header =
      padded("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 30) + LittleEndian(9, 2) + LittleEndian(6, 2);
  header = padded(header, 44) + LittleEndian(1, 4) + LittleEndian(1, 4);  // one table; the directory's sector
  // No small streams; the table's sector.
  header = padded(header, 60) + LittleEndian(kEnd, 4) + LittleEndian(0, 4) + LittleEndian(kEnd, 4) +
           LittleEndian(0, 4) + LittleEndian(0, 4);
  while (header.size() < kSector) header += '\xFF';
  return header + padded(table, kSector) + padded(directory, kSector) + streams;
}

inline std::string Encrypted(const std::string& archive, std::string_view password = "VelvetSweatshop") {
  const auto sha1 = [](const std::string& text) {
    sha1_ctx context;
    sha1_init(&context);
    sha1_update(&context, text.size(), reinterpret_cast<const std::uint8_t*>(text.data()));
    std::string digest(SHA1_DIGEST_SIZE, '\0');
    sha1_digest(&context, digest.size(), reinterpret_cast<std::uint8_t*>(digest.data()));
    return digest;
  };
  const std::string salt = "0123456789abcdef";
  std::string secret = salt;
  for (const char c : password) (secret += c) += '\0';
  auto digest = sha1(secret);
  for (std::uint32_t i = 0; i < 50'000; ++i) digest = sha1(LittleEndian(i, 4) + digest);
  digest = sha1(digest + LittleEndian(0, 4));
  std::string inner(64, '\x36');
  for (std::size_t i = 0; i < digest.size(); ++i) inner[i] = static_cast<char>(inner[i] ^ digest[i]);
  const auto key = sha1(inner).substr(0, AES128_KEY_SIZE);

  const auto encrypt = [&key](std::string text) {
    text.resize((text.size() + AES_BLOCK_SIZE - 1) / AES_BLOCK_SIZE * AES_BLOCK_SIZE, '\0');
    aes128_ctx context;
    aes128_set_encrypt_key(&context, reinterpret_cast<const std::uint8_t*>(key.data()));
    auto* const bytes = reinterpret_cast<std::uint8_t*>(text.data());
    aes128_encrypt(&context, text.size(), bytes, bytes);
    return text;
  };
  const std::string verifier = "fedcba9876543210";
  const auto number = [](std::uint32_t value) { return LittleEndian(value, 4); };
  const auto header = number(0x24) + number(0) + number(0x660E) + number(0x8004) + number(128) + number(24) +
                      number(0) + number(0);
  const auto info = number(0x0002'0004) + number(0x24) + number(static_cast<std::uint32_t>(header.size())) +
                    header + number(AES_BLOCK_SIZE) + salt + encrypt(verifier) + number(SHA1_DIGEST_SIZE) +
                    encrypt(sha1(verifier));
  return CompoundFileOf(info, LittleEndian(archive.size(), 8) + encrypt(archive));
}

}  // namespace rowlark::samples
