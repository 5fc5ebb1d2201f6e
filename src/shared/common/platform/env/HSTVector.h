#pragma once

#include <utility>
#include <vector>

/// The platform's list container: a std::vector under a type of its own, so that lists that cross into Tcl
/// can be told from ordinary vectors. Adds nothing to its base; converts to and from it freely.
template <class T>
class HSTVector : public std::vector<T> {
public:
    using std::vector<T>::vector;
    using std::vector<T>::operator=;

    HSTVector() = default;
    HSTVector(const std::vector<T>& other) : std::vector<T>(other) {}
    HSTVector(std::vector<T>&& other) noexcept : std::vector<T>(std::move(other)) {}
};
