#include "csv/Charset.h"

#include "util/Utf.h"

namespace rowlark {
namespace {

class Windows1252Charset final : public Charset {
 public:
  Windows1252Charset() {
    std::string all(256, '\0');
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<char>(i);
    characters_ = FromWindows1252(all);
  }

  std::string_view Name() const override { return "Windows-1252"; }

  std::string ToUtf8(std::string_view bytes) const override {
    return rowlark::ToUtf8(FromWindows1252(bytes));
  }

  char32_t Append(std::string& bytes, std::string_view utf8) const override {
    while (!utf8.empty()) {
      const char32_t c = TakeUtf8(utf8);
      const auto at = c < 0x80      ? c
                      : c < 0x10000 ? characters_.find(static_cast<char16_t>(c), 0x80)
                                    : std::u16string::npos;
      if (at == std::u16string::npos) return c;
      bytes += static_cast<char>(at);
    }
    return 0;
  }

 private:
  std::u16string characters_;  // of all bytes
};

}  // namespace

std::shared_ptr<const Charset> Windows1252() { return std::make_shared<Windows1252Charset>(); }

}  // namespace rowlark
