// The functions' rows as plain data: the children of a command and the elements of its result.
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
        Bytes,   // as many bytes as its width attribute says; left out when there are none
        Record,  // `children`
        Ports,   // an array of 8 for each port, up to `width` of them, numbered in their names
    };
    std::string name;
    std::string type;  // the value of its type attribute
    Kind kind = Kind::Scalar;
    std::size_t width = 0;
    bool repeats = false;  // any number of times, also 0
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

/// The commands that prepare the machine for the example; usually none.
std::vector<std::string> CommandsBefore(const FunctionText& function);

/// The topology file of the machine that the example needs; empty for the default machine.
std::string TopologyFor(const FunctionText& function);

/// An example command: every child once.
std::string ExampleCommand(const FunctionText& function);
