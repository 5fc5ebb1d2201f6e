#pragma once

#include <string>
#include <vector>

#include "platform/property/HCPProperty.h"

/// What the listings of properties share.
namespace HTCProperty::detail::listing {

using Entries = std::vector<HCPProperty::Types::PNameAndProp>;

/// Keeps the entries whose names match a glob pattern or regular expression; "*" keeps all.
void keepMatching(Entries& entries, const std::string& pattern, bool regexp);

struct ReportOptions {
    bool all = false;      ///< properties without a value too
    bool owners = false;   ///< with the owner of each, in a session that debugs Tcl
    bool tclDebug = false; ///< such a session, which also sees what is hidden
};

/// A table with a row for each property of an object.
std::string normalReport(const HCPProperty::tclany& object, const Entries& entries,
                         const ReportOptions& options);

/// A table with a paragraph for each property of an object, or of a class for an empty one.
std::string detailedReport(const HCPProperty::tclany& object, const Entries& entries,
                           const ReportOptions& options);

/// A text in lines of at most `width` characters of UTF-8, broken at blanks, or where there is none at the
/// width. A width below 10 leaves it as it is.
std::string brokenLines(const std::string& text, size_t width);

} // namespace HTCProperty::detail::listing
