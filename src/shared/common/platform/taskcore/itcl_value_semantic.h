#pragma once

#include <boost/any.hpp>
#include <string>

namespace boost::program_options {
class value_semantic;
}

namespace vek::tcltasks {

/// What the task core asks of an option's value semantic beyond the option model of Boost.
class itcl_value_semantic {
public:
    virtual ~itcl_value_semantic() = default;

    virtual bool is_infra() const = 0;
    /// A deprecated option is hidden without further word.
    virtual bool is_hidden() const = 0;
    virtual bool is_deprecated() const = 0;
    virtual bool has_default() const = 0;
    virtual bool has_implicit() const = 0;
    virtual const boost::any& default_value() const = 0;
    virtual const std::string& deprecation_message() const = 0;
    virtual bool is_list() const = 0;
    virtual void switch_name(const std::string& name) = 0;
    virtual const std::string& switch_name() const = 0;

    virtual bool has_default_provider() const = 0;
    /// How help shows the default.
    virtual const std::string& default_text() const = 0;
    /// What the option takes, in words: "an integer".
    virtual const char* value_kind() const = 0;
    virtual boost::program_options::value_semantic& boost_semantic() = 0;
};

} // namespace vek::tcltasks
