#include "TableGenerator.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace rowlark::bench {
namespace {

using std::string_view;

struct Name {
  string_view text;
  string_view ascii;  // as it stands in an e-mail address
};

struct Place {
  string_view city;
  string_view country;
};

// People and places of one part of the world.
struct Region {
  std::span<const Name> first_names;
  std::span<const Name> last_names;
  std::span<const Place> places;
};

constexpr Name kWesternFirst[] = {
    {"Peter", "peter"},       {"Helene", "helene"},     {"Stephen", "stephen"},   {"Catherine", "catherine"},
    {"Jorge", "jorge"},       {"Sophie", "sophie"},     {"Anneke", "anneke"},     {"Matteo", "matteo"},
    {"Michelle", "michelle"}, {"Oliver", "oliver"},     {"Emma", "emma"},         {"Jan", "jan"},
    {"Laura", "laura"},       {"Steven", "steven"},     {"Beatrice", "beatrice"}, {"Jennifer", "jennifer"},
    {"Ines", "ines"},         {"Philippe", "philippe"}, {"Edward", "edward"},     {"Marie", "marie"},
};
constexpr Name kWesternLast[] = {
    {"Andersen", "andersen"}, {"Becker", "becker"},    {"Lefebvre", "lefebvre"}, {"Fernandez", "fernandez"},
    {"Sorensen", "sorensen"}, {"de Vries", "devries"}, {"Hughes", "hughes"},     {"Rossi", "rossi"},
    {"Keller", "keller"},     {"Meyer", "meyer"},      {"Bennett", "bennett"},   {"Pereira", "pereira"},
    {"Lambert", "lambert"},   {"Jensen", "jensen"},    {"Novak", "novak"},       {"Fischer", "fischer"},
    {"Wilson", "wilson"},     {"Girard", "girard"},    {"Bakker", "bakker"},     {"Gentile", "gentile"},
};
constexpr Place kWesternPlaces[] = {
    {"Bremen", "Germany"},     {"Leeds", "United Kingdom"}, {"Manchester", "United Kingdom"},
    {"Grenoble", "France"},    {"Rennes", "France"},        {"Dresden", "Germany"},
    {"Geneva", "Switzerland"}, {"Utrecht", "Netherlands"},  {"Eindhoven", "Netherlands"},
    {"Odense", "Denmark"},     {"Ghent", "Belgium"},        {"Porto", "Portugal"},
    {"Trieste", "Italy"},      {"Valencia", "Spain"},       {"Graz", "Austria"},
    {"Limerick", "Ireland"},   {"Uppsala", "Sweden"},       {"Ostend", "Belgium"},
};
constexpr Name kGermanFirst[] = {
    {"Jürgen", "juergen"}, {"Käthe", "kaethe"}, {"Günter", "guenter"},
    {"Bärbel", "baerbel"}, {"Sören", "soeren"},
};
constexpr Name kGermanLast[] = {
    {"Müller", "mueller"}, {"Schröder", "schroeder"}, {"Weiß", "weiss"},
    {"Jäger", "jaeger"},   {"Köhler", "koehler"},
};
constexpr Place kGermanPlaces[] = {
    {"München", "Germany"},
    {"Köln", "Germany"},
    {"Düsseldorf", "Germany"},
    {"Zürich", "Switzerland"},
};
constexpr Name kCyrillicFirst[] = {
    {"Олена", "olena"}, {"Сергей", "sergey"}, {"Милена", "milena"}, {"Георги", "georgi"}, {"Тарас", "taras"},
};
constexpr Name kCyrillicLast[] = {
    {"Шевченко", "shevchenko"}, {"Петров", "petrov"},       {"Иванова", "ivanova"},
    {"Йовановић", "jovanovic"}, {"Коваленко", "kovalenko"},
};
constexpr Place kCyrillicPlaces[] = {
    {"Київ", "Ukraine"},
    {"София", "Bulgaria"},
    {"Београд", "Serbia"},
    {"Одеса", "Ukraine"},
};
constexpr Name kGreekFirst[] = {
    {"Ελένη", "eleni"},
    {"Γιώργος", "giorgos"},
    {"Κατερίνα", "katerina"},
    {"Νίκος", "nikos"},
};
constexpr Name kGreekLast[] = {
    {"Παπαδόπουλος", "papadopoulos"},
    {"Γεωργίου", "georgiou"},
    {"Οικονόμου", "oikonomou"},
};
constexpr Place kGreekPlaces[] = {{"Αθήνα", "Greece"}, {"Θεσσαλονίκη", "Greece"}, {"Λευκωσία", "Cyprus"}};

constexpr Region kWestern{kWesternFirst, kWesternLast, kWesternPlaces};
constexpr Region kGerman{kGermanFirst, kGermanLast, kGermanPlaces};
constexpr Region kCyrillic{kCyrillicFirst, kCyrillicLast, kCyrillicPlaces};
constexpr Region kGreek{kGreekFirst, kGreekLast, kGreekPlaces};

constexpr string_view kCompanies[] = {
    "Northtimber",      "Bluewater",      "Helvetic",  "Silverprint",    "Oakfield",
    "Meridian Freight", "Castle Brewery", "Evergreen", "Harbour Cranes", "Westend Bakeries",
};
constexpr string_view kCompanyForms[] = {"Ltd", "GmbH", "& Sons", "Services", "S.r.l.", ", Weber & Co"};
constexpr string_view kMailHosts[] = {"example.com", "example.org", "example.net"};
constexpr string_view kFillers[] = {
    "the",   "see",   "called", "before", "order",   "sent",    "new",    "price", "letter",
    "week",  "needs", "keeps",  "offer",  "between", "contact", "after",  "phone", "meeting",
    "often", "asks",  "from",   "again",  "soon",    "larger",  "number",
};

// SplitMix64: the standard library's distributions differ from one library to the next.
class Random {
 public:
  std::uint64_t Next() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }
  // 0 to `bound` - 1.
  std::size_t Below(std::size_t bound) { return static_cast<std::size_t>((Next() >> 32) * bound >> 32); }
  bool PerMille(std::size_t share) { return Below(1000) < share; }
  template <class Choices>
  const auto& Of(const Choices& choices) {
    return choices[Below(std::size(choices))];
  }

 private:
  std::uint64_t state_ = 20'240'229;
};

const Region& RegionOf(std::size_t perMille) {
  if (perMille < 25) return kCyrillic;
  if (perMille < 40) return kGreek;
  if (perMille < 80) return kGerman;
  return kWestern;
}

string_view StatusOf(std::size_t percent) {
  if (percent < 40) return "paid";
  if (percent < 70) return "open";
  if (percent < 90) return "overdue";
  return "cancelled";
}

void AppendPadded(std::string& text, std::size_t value, std::size_t digits) {
  const std::string plain = std::to_string(value);
  if (plain.size() < digits) text.append(digits - plain.size(), '0');
  text += plain;
}

// Three to eight words, the planted ones in front of the fillers.
void AppendNote(std::string& line, Random& random, bool isRare) {
  std::array<string_view, 8> words;
  std::size_t count = 0;
  if (isRare) words[count++] = "Zephyrine";
  if (random.PerMille(10)) words[count++] = "Reminder";
  if (random.PerMille(10)) words[count++] = "Договор";
  if (random.PerMille(3)) words[count++] = "express";
  if (random.PerMille(3)) words[count++] = "fragile";
  if (random.PerMille(3)) words[count++] = "insured";
  if (random.PerMille(50) && count < words.size())
    words[count++] = random.PerMille(500) ? "prepaid" : "partly paid";
  if (random.PerMille(500) && count < words.size()) words[count++] = "invoice";
  const std::size_t length = 3 + random.Below(6);
  while (count < length) words[count++] = random.Of(kFillers);
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) line += ' ';
    line += words[i];
  }
}

}  // namespace

void WriteTable(std::ostream& out, std::size_t rows) {
  Random random;
  std::string lines = "id,date,first name,last name,company,city,country,e-mail,amount,status,note\n";
  for (std::size_t row = 1; row <= rows; ++row) {
    const Region& region = RegionOf(random.Below(1000));
    const Name& first = random.Of(region.first_names);
    const Name& last = random.Of(region.last_names);
    const Place& place = random.Of(region.places);

    lines += "RE-";
    AppendPadded(lines, row, 7);
    lines += ",20";
    AppendPadded(lines, 19 + random.Below(6), 2);
    lines += '-';
    AppendPadded(lines, 1 + random.Below(12), 2);
    lines += '-';
    AppendPadded(lines, 1 + random.Below(28), 2);
    for (const string_view cell : {first.text, last.text}) {
      lines += ',';
      lines += cell;
    }
    const string_view company = random.Of(kCompanies);
    const string_view form = random.Of(kCompanyForms);
    const bool isQuoted = form.front() == ',';
    lines += isQuoted ? ",\"" : ",";
    lines += company;
    if (!isQuoted) lines += ' ';
    lines += form;
    lines += isQuoted ? "\"," : ",";
    lines += place.city;
    lines += ',';
    lines += place.country;
    lines += ',';
    lines += first.ascii;
    lines += '.';
    lines += last.ascii;
    lines += '@';
    lines += random.Of(kMailHosts);
    lines += ',';
    lines += std::to_string(1 + random.Below(9999));
    lines += '.';
    AppendPadded(lines, random.Below(100), 2);
    lines += " EUR,";
    lines += StatusOf(random.Below(100));
    lines += ',';
    // Ten rows of every table, or all of a tiny one: wherever the tenths of the table change.
    AppendNote(lines, random, row * 10 / rows != (row - 1) * 10 / rows);
    lines += '\n';

    if (lines.size() > 1 << 16) {
      out.write(lines.data(), static_cast<std::streamsize>(lines.size()));
      lines.clear();
    }
  }
  out.write(lines.data(), static_cast<std::streamsize>(lines.size()));
}

}  // namespace rowlark::bench
