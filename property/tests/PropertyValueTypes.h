#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

enum class Flavour : std::int32_t
{
    Plain = 0,
    Sweet = 1,
    Sour = 2
};

struct Settings
{
    std::map<std::string, std::string> texts;

    bool operator==(const Settings& other) const { return texts == other.texts; }
};

/** A fresh value and two others for each kind of type that properties hold. */
template <class T>
struct Samples;

template <>
struct Samples<std::vector<int>>
{
    static std::vector<int> fresh() { return {}; }
    static std::vector<int> first() { return {1, 2, 3}; }
    static std::vector<int> second() { return {3, 2, 1}; }
};

template <>
struct Samples<Flavour>
{
    static Flavour fresh() { return Flavour::Plain; }
    static Flavour first() { return Flavour::Sweet; }
    static Flavour second() { return Flavour::Sour; }
};

template <>
struct Samples<Settings>
{
    static Settings fresh() { return {}; }
    static Settings first() { return {{{"x", "1"}}}; }
    static Settings second() { return {{{"x", "2"}, {"y", ""}}}; }
};

using PropertyValueTypes = testing::Types<std::vector<int>, Flavour, Settings>;
