#include "imageio/save_names.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <FreeImage.h>

#include "base/text.h"
#include "imageio/save_format.h"
#include "imageio/save_image.h"

namespace mirellon::imageio {

namespace {

struct Offer {
  std::string_view extension;
  int filterIndex;    // of the format in the dialog
  int proposedIndex;  // selected for a photograph with that extension
};
constexpr std::array<Offer, 4> kOffers8 = {{{".bmp", 1, 1}, {".tif", 2, 2}, {".png", 3, 3}, {".jpg", 4, 4}}};
// A PNG selects the first entry too.
constexpr std::array<Offer, 2> kOffers16 = {{{".tif", 1, 1}, {".png", 2, 1}}};

struct Offers {
  const Offer* first;
  const Offer* last;
  [[nodiscard]] const Offer* begin() const { return first; }
  [[nodiscard]] const Offer* end() const { return last; }
};

Offers OffersFor(int bitsPerComponent) {
  if (bitsPerComponent == 16) return {kOffers16.data(), kOffers16.data() + kOffers16.size()};
  return {kOffers8.data(), kOffers8.data() + kOffers8.size()};
}

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

const Offer* FindOffer(std::string_view extension, int bitsPerComponent) {
  const Offers offers = OffersFor(bitsPerComponent);
  const Offer* found = std::find_if(offers.begin(), offers.end(), [extension](const Offer& offer) {
    return std::equal(extension.begin(), extension.end(), offer.extension.begin(), offer.extension.end(),
                      [](char a, char b) { return Lower(a) == b; });
  });
  return found == offers.end() ? nullptr : found;
}

// Where each character begins: those of UTF-8, or the single bytes of a text that is not.
std::vector<std::size_t> CharacterStarts(std::string_view text) {
  const bool utf8 = base::IsValidUtf8(text);
  std::vector<std::size_t> starts;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool continuation = (static_cast<unsigned char>(text[i]) & 0xC0U) == 0x80U;
    if (!utf8 || !continuation) starts.push_back(i);
  }
  return starts;
}

}  // namespace

SaveProposal ProposeSave(const std::filesystem::path& current, int bitsPerComponent) {
  SaveProposal proposal;
  const std::string text = current.string();
  const std::size_t separator = text.rfind('/');
  if (separator == std::string::npos) return proposal;
  const std::string name = text.substr(separator + 1);
  const std::size_t dot = name.rfind('.');
  if (dot == std::string::npos) return proposal;
  if (const Offer* offer = FindOffer(std::string_view(name).substr(dot), bitsPerComponent);
      offer != nullptr) {
    proposal.filterIndex = offer->proposedIndex;
    proposal.defaultExtension = offer->extension;
  }
  proposal.path = text.substr(0, separator + 1) + name.substr(0, dot) + "-denoised";
  return proposal;
}

std::filesystem::path CompleteName(const std::filesystem::path& chosen, int bitsPerComponent,
                                   int filterIndex) {
  const std::string text = chosen.string();
  const bool known = text.size() >= 4 &&
                     FindOffer(std::string_view(text).substr(text.size() - 4), bitsPerComponent) != nullptr;
  if (known) return chosen;
  const Offers offers = OffersFor(bitsPerComponent);
  const Offer* selected = std::find_if(offers.begin(), offers.end(), [filterIndex](const Offer& offer) {
    return offer.filterIndex == filterIndex;
  });
  return selected == offers.end() ? chosen : std::filesystem::path(text + std::string(selected->extension));
}

std::filesystem::path WrittenName(const std::filesystem::path& target) {
  if (IsWrittenFormat(FormatOfName(target))) return target;
  std::string text = target.string();
  const std::vector<std::size_t> starts = CharacterStarts(text);
  if (starts.size() > 5 && text[starts[starts.size() - 4]] == '.') {
    return text.substr(0, starts[starts.size() - 3]) + "tif";
  }
  return text + ".tif";
}

}  // namespace mirellon::imageio
