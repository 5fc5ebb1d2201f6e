#pragma once

#include <memory>
#include <string>
#include <tcl.h>
#include <vector>

#include "platform/property/HCPFilterExpression.h"
#include "platform/property/HCPProperty.h"

/// A filter expression that is asked for objects of any classes: HCPFilterExpression tells its language.
///
/// Numbers compare as numbers, texts as texts; a text that reads as a number compares by size with a number.
/// An object without a value makes != and !~ true and all others false. Properties are looked up when the
/// first object of a class is asked for. Interpreter's thread.
class HCPTclFilterMatch {
public:
    /// Throws HEXError that tells the position of a fault, from 1, and what was expected there. `regexp`: the
    /// right side of =~ and !~ is a regular expression; `nocase`: texts match without regard to case.
    HCPTclFilterMatch(const std::string& expression, Tcl_Interp* interp, bool regexp = false,
                      bool nocase = false);
    ~HCPTclFilterMatch();

    /// Throws HEXError for what is no object or is gone, for a property that its class does not know, and for
    /// a value that cannot be compared with a property of its type.
    bool match(const vek::tcltasks::tclany& object);
    bool match(const HCPProperty::ObjectInfo& info, const void* object);

private:
    struct bound_test;

    void bind(const HCPProperty::ObjectInfo& info, const void* object);
    bool answer(bound_test& test, const void* object);

    HCPFilterExpression m_expression;
    const HCPProperty::ObjectInfo* m_info = nullptr;
    std::vector<bound_test> m_tests; // of m_info
    HATAttrAny m_value;
};
