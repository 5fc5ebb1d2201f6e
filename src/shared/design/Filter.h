#pragma once

#include "design/Property.h"

#include "platform/property/HCPFilterExpression.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace design {

/// A filter expression that is asked for objects of the netlist: HCPFilterExpression tells its language.
///
/// A property that was declared a number compares as one, a text as text; an attribute of the file compares
/// as a number where both sides read as one. An object without the property makes != and !~ true and all
/// others false. Properties are bound to a design and a class when the first of its objects is asked for, and
/// read straight from the design's memory.
class Filter {
public:
    using Options = HCPFilterExpression::Options;

    /// Throws HEXError that tells the position of a fault, from 1, and what was expected there.
    explicit Filter(std::string text, Options options = {false, false});
    Filter(Filter&&) noexcept;
    ~Filter();

    /// Resolves the properties for a class; matches() does so by itself. Throws Error(no_such_property) if no
    /// object of the class can have one, Error(bad_filter) if a literal does not fit a property's type.
    void bind(const Design& design, ObjectClass cls);

    bool matches(const ObjectRef& object);

    /// The same for the class and design bound last, by number.
    bool matches(uint32_t index);

private:
    class BoundTest;
    struct Binding;

    HCPFilterExpression expression_;
    std::vector<std::unique_ptr<Binding>> bindings_;
    Binding* bound_ = nullptr;
};

} // namespace design
