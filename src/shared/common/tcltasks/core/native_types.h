#pragma once

#include "platform/property/HATAttrSpec.h"
#include "platform/property/HATAttrUtils.h"
#include "platform/site/HCClusterConf.h"
#include "tcltasks/core/HTCGetTclStringRep.h"

/// The platform's own native types as Tcl values.
namespace vek::tcltasks {

template <>
struct native_object<HATAttr*> {
    static std::string name(const HATAttr* attr) { return HATAttrUtils::getStringValue(*attr); }
};

template <>
struct native_object<HATAttrSpec*> {
    static std::string name(const HATAttrSpec* spec) { return spec->getName(); }
};

template <>
struct native_object<HCClusterConf*> {
    static std::string name(const HCClusterConf* conf) { return conf->getName(); }
};

} // namespace vek::tcltasks
