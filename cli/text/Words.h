#ifndef TEXT_WORDS_H
#define TEXT_WORDS_H

#include <string>
#include <vector>

namespace tesselctl {

/** The texts as one: "sdc, sdd". */
std::string joined(const std::vector<std::string>& texts, const std::string& between = ", ");

/** In lower case, of the letters of ASCII. */
std::string lowered(std::string text);

/** A text as one word of a shell command: what holds other than harmless characters is quoted. */
std::string shellWord(const std::string& text);

} // namespace tesselctl

#endif
