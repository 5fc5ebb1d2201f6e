#pragma once

#include <string>

/// The configuration of a compute cluster, under a name.
class HCClusterConf {
public:
    explicit HCClusterConf(std::string name) : m_name(std::move(name)) {}
    const std::string& getName() const { return m_name; }

private:
    std::string m_name;
};
