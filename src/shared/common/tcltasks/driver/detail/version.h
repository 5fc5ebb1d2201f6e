#pragma once

#include <string>

namespace driver::detail {

/// The product's version number alone, or the whole version text: product, build and copyright, each line
/// with its newline.
std::string getVersion(bool shortForm);

/// The session's banner as it stands in log and journal. In regression mode it has no version lines, so that
/// logs of different builds can be compared.
std::string banner(bool regress);

/// Sends the banner to log and journal. A session whose log "*.cdi" or "*.cds" lies in a run directory shows
/// it as well: there the parent reads what the session prints.
void writeDateMessage(bool regress);

} // namespace driver::detail
