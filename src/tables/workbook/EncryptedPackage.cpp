#include "tables/workbook/EncryptedPackage.h"

#include <nettle/aes.h>
#include <nettle/base64.h>
#include <nettle/cbc.h>
#include <nettle/nettle-meta.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "tables/workbook/Xml.h"

namespace rowlark {
namespace {

using std::string_view;

constexpr string_view kPassword = "VelvetSweatshop";
constexpr std::size_t kBlock = AES_BLOCK_SIZE;

[[noreturn]] void Refuse() {
  throw std::runtime_error("The workbook is encrypted; save it without a password");
}

const std::uint8_t* Bytes(string_view text) { return reinterpret_cast<const std::uint8_t*>(text.data()); }
std::uint8_t* Bytes(std::string& text) { return reinterpret_cast<std::uint8_t*>(text.data()); }

std::string Number32(uint32_t number) {
  std::string bytes;
  for (int i = 0; i < 4; ++i, number >>= 8) bytes += static_cast<char>(number & 0xFF);
  return bytes;
}

uint32_t TakeNumber32(string_view& bytes) {
  if (bytes.size() < 4) Refuse();
  uint32_t number = 0;
  for (std::size_t i = 4; i-- > 0;) number = number << 8 | static_cast<unsigned char>(bytes[i]);
  bytes.remove_prefix(4);
  return number;
}

string_view TakeBytes(string_view& bytes, std::size_t size) {
  if (bytes.size() < size) Refuse();
  const auto taken = bytes.substr(0, size);
  bytes.remove_prefix(size);
  return taken;
}

class Hash {
 public:
  explicit Hash(const nettle_hash& algorithm)
      : algorithm_(algorithm), context_(algorithm.context_size / sizeof(std::max_align_t) + 1) {}

  std::string operator()(string_view first, string_view second) {
    algorithm_.init(context_.data());
    algorithm_.update(context_.data(), first.size(), Bytes(first));
    algorithm_.update(context_.data(), second.size(), Bytes(second));
    std::string digest(algorithm_.digest_size, '\0');
    algorithm_.digest(context_.data(), digest.size(), Bytes(digest));
    return digest;
  }
  // That of the password, many times over.
  std::string OfPassword(string_view salt, uint32_t times) {
    std::string password;
    for (const char c : kPassword) (password += c) += '\0';  // as UTF-16
    auto digest = (*this)(salt, password);
    for (uint32_t i = 0; i < times; ++i) digest = (*this)(Number32(i), digest);
    return digest;
  }

 private:
  const nettle_hash& algorithm_;
  std::vector<std::max_align_t> context_;
};

// Decrypts whole blocks; with an initial vector each depends on the one before.
std::string Decrypt(string_view key, string_view data, const std::string* vector) {
  const auto* const algorithm = key.size() == AES128_KEY_SIZE   ? &nettle_aes128
                                : key.size() == AES192_KEY_SIZE ? &nettle_aes192
                                : key.size() == AES256_KEY_SIZE ? &nettle_aes256
                                                                : nullptr;
  if (algorithm == nullptr) Refuse();
  data = data.substr(0, data.size() / kBlock * kBlock);
  alignas(std::max_align_t) std::array<std::byte, sizeof(aes256_ctx)> context{};
  algorithm->set_decrypt_key(context.data(), Bytes(key));
  std::string plain(data.size(), '\0');
  if (vector == nullptr) {
    algorithm->decrypt(context.data(), data.size(), Bytes(plain), Bytes(data));
  } else {
    std::string previous(*vector);
    previous.resize(kBlock, '\0');
    cbc_decrypt(context.data(), algorithm->decrypt, kBlock, Bytes(previous), data.size(), Bytes(plain),
                Bytes(data));
  }
  return plain;
}

// What stands before the encrypted bytes: their size.
std::uint64_t TakeSize(string_view& package) {
  const std::uint64_t low = TakeNumber32(package);
  return low | std::uint64_t{TakeNumber32(package)} << 32;
}

// "Standard": AES block by block, a key from SHA-1.
std::string DecryptStandard(string_view info, string_view package) {
  constexpr uint32_t kTimes = 50'000;
  const auto header_size = TakeNumber32(info);
  auto header = TakeBytes(info, header_size);
  TakeBytes(header, 16);  // flags, nothing, the algorithms
  const auto key_size = TakeNumber32(header) / 8;
  if (TakeNumber32(info) != kBlock) Refuse();  // the size of the salt
  const auto salt = TakeBytes(info, kBlock);
  const auto verifier = TakeBytes(info, kBlock);
  TakeNumber32(info);
  const auto verifier_hash = TakeBytes(info, 2 * kBlock);

  Hash hash(nettle_sha1);
  const auto digest = hash(hash.OfPassword(salt, kTimes), Number32(0));
  std::string key;
  for (const char filling : {'\x36', '\x5C'}) {
    std::string block(64, filling);
    for (std::size_t i = 0; i < digest.size(); ++i) block[i] = static_cast<char>(block[i] ^ digest[i]);
    key += hash(block, {});
  }
  if (key_size > key.size()) Refuse();
  key.resize(key_size);
  const auto expected = hash(Decrypt(key, verifier, nullptr), {});
  if (!Decrypt(key, verifier_hash, nullptr).starts_with(expected)) Refuse();

  const auto size = TakeSize(package);
  auto plain = Decrypt(key, package, nullptr);
  plain.resize(std::min<std::uint64_t>(size, plain.size()));
  return plain;
}

// "Agile": what is used stands in XML.
using Values = std::map<std::string, std::string>;

struct AgileInfo final : XmlHandler {
  void Start(string_view name, const Attributes& attributes) override {
    auto* const to = name == "keyData" ? &data : name == "p:encryptedKey" ? &key : nullptr;
    for (const auto& [attribute, value] : attributes) {
      if (to != nullptr) to->emplace(attribute, value);
    }
  }
  Values data;
  Values key;
};

const std::string& Get(const Values& values, const std::string& name) {
  const auto found = values.find(name);
  if (found == values.end()) Refuse();
  return found->second;
}

std::string GetBytes(const Values& values, const std::string& name) {
  const auto& text = Get(values, name);
  std::string bytes(BASE64_DECODE_LENGTH(text.size()), '\0');
  base64_decode_ctx context;
  base64_decode_init(&context);
  std::size_t size = bytes.size();
  if (base64_decode_update(&context, &size, Bytes(bytes), text.size(), text.data()) == 0) Refuse();
  bytes.resize(size);
  return bytes;
}

uint32_t GetNumber(const Values& values, const std::string& name, uint32_t largest) {
  const auto number = std::strtoul(Get(values, name).c_str(), nullptr, 10);
  if (number > largest) Refuse();
  return static_cast<uint32_t>(number);
}

const nettle_hash& GetHash(const Values& values) {
  const auto& name = Get(values, "hashAlgorithm");
  if (name == "SHA1") return nettle_sha1;
  if (name == "SHA256") return nettle_sha256;
  if (name == "SHA384") return nettle_sha384;
  if (name == "SHA512") return nettle_sha512;
  Refuse();
}

std::string DecryptAgile(string_view xml, string_view package) {
  constexpr uint32_t kMaxTimes = 1'000'000;
  constexpr uint32_t kMaxKeyBits = 256;
  constexpr std::size_t kSegment = 4096;
  AgileInfo info;
  ParseXml(xml, info);

  Hash hash(GetHash(info.key));
  const auto salt = GetBytes(info.key, "saltValue");
  const auto digest = hash.OfPassword(salt, GetNumber(info.key, "spinCount", kMaxTimes));
  const auto key_size = GetNumber(info.key, "keyBits", kMaxKeyBits) / 8;
  const auto decrypt = [&](string_view purpose, const std::string& value) {
    auto key = hash(digest, purpose);
    key.resize(key_size, '\x36');
    return Decrypt(key, GetBytes(info.key, value), &salt);
  };
  const auto input = decrypt("\xFE\xA7\xD2\x76\x3B\x4B\x9E\x79", "encryptedVerifierHashInput");
  const auto expected = decrypt("\xD7\xAA\x0F\x6D\x30\x61\x34\x4E", "encryptedVerifierHashValue");
  if (!expected.starts_with(hash(input, {}))) Refuse();
  auto key = decrypt("\x14\x6E\x0B\xE7\xAB\xAC\xD0\xD6", "encryptedKeyValue");
  key.resize(std::min<std::size_t>(key.size(), key_size));

  Hash data_hash(GetHash(info.data));
  const auto data_salt = GetBytes(info.data, "saltValue");
  const auto size = TakeSize(package);
  std::string plain;
  for (uint32_t i = 0; !package.empty(); ++i) {
    auto vector = data_hash(data_salt, Number32(i));
    vector.resize(kBlock);
    plain += Decrypt(key, package.substr(0, kSegment), &vector);
    package.remove_prefix(std::min(package.size(), kSegment));
  }
  plain.resize(std::min<std::uint64_t>(size, plain.size()));
  return plain;
}

}  // namespace

std::optional<std::string> DecryptPackage(const CompoundFile& file) {
  const auto info = file.Read("EncryptionInfo");
  const auto package = file.Read("EncryptedPackage");
  if (!info || !package) return std::nullopt;
  constexpr uint32_t kAgile = 0x0004'0004;
  string_view rest(*info);
  const auto version = TakeNumber32(rest);
  TakeNumber32(rest);  // flags
  return version == kAgile ? DecryptAgile(rest, *package) : DecryptStandard(rest, *package);
}

}  // namespace rowlark
