#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace bomparser {

class CTNFileParserEngine;

/// Writes "bomparser: TEXT" to standard error.
void PrintMessage(std::string_view text);
/// Writes the text as it stands, and a line end, to standard error.
void PrintLine(std::string_view text);
/// The message of what went wrong with an input, the input named once.
std::string InputFailureText(std::string_view input, std::string_view text);
/// The text with blanks in place of line feeds.
std::string OnOneLine(std::string text);
/// One line for every line of the template's error log, from the one with this place on; not for
/// those that are told besides.
void PrintErrorLog(const CTNFileParserEngine& engine, std::size_t from = 0,
                   std::string_view toldBesides = {});
/// One line for every invalid record of the template: it never matches. Auxiliary records first.
void WarnOfInvalidRecords(const CTNFileParserEngine& engine);

}  // namespace bomparser
