// The functions' rows as plain data: what a command may hold and what its result is made of.
#pragma once

#include <string>
#include <vector>

/// A request child.
struct Child {
    enum class Kind {
        Number,     // `bits` wide
        Numbers,    // up to `count` numbers, each `bits` wide
        Text,       // up to `count` characters, a longer one is cut
        WholeText,  // up to `count` characters, a longer one is refused
    };
    std::string name;
    Kind kind;
    unsigned bits;
    std::size_t count;
};

/// An element of a result.
struct Element {
    enum class Kind {
        Scalar,
        Hex,
        Array,   // `width` items
        Bytes,   // as many bytes as its width attribute says; no element at all for none
        Record,  // `children`
        Ports,   // an array of 8 for each port, up to `width` of them, numbered in their names
    };
    std::string name;
    std::string type;  // the value of its type attribute
    Kind kind = Kind::Scalar;
    std::size_t width = 0;
    bool repeats = false;  // any number of them, also none
    std::vector<Element> children = {};
};

struct FunctionText {
    std::string name;
    bool paged;
    std::vector<Child> children;
    std::vector<Element> elements;
};

/// The controller's functions, in table order.
std::vector<FunctionText> DescribeFunctions();

/// The management functions, in table order.
std::vector<FunctionText> DescribeManagement();

/// The commands that bring the machine to where the example works; none for most.
std::vector<std::string> CommandsBefore(const FunctionText& function);

/// What has to be said of the example; empty for most.
std::string RemarkOn(const FunctionText& function);

/// An example command: every child once.
std::string ExampleCommand(const FunctionText& function);
