#include <functional>

#include "tests/tree/treenode.h"

namespace {

// A tree of one shape. Its states are one character each: of the category, its first application, whose first garbage
// category and its two rules, second garbage category and its rule; the second application, its garbage category and
// its rule. '-' stands for no state of its own, 'x' for none that is a number, '~' for a negative one.
class Tree {
public:
    explicit Tree(const std::string& states, bool secondIsPresent = true) : m_category(Xml(states, secondIsPresent)) {
        Add(*m_category);
    }
    // 'T'oggles, 'S'ets, 'R'ecomputes, recomputes from a 'C'hild, or resets (X) the node at this place of the states.
    void Do(char operation, size_t node, uint32_t state) const { m_nodes.at(node)(operation, state); }
    std::string States() const {
        std::string states;
        for (const auto& node : m_nodes)
            states += node('?', 0) > 9 ? "~" : std::to_string(node('?', 0));
        return states;
    }

private:
    static std::string Xml(const std::string& states, bool secondIsPresent) {
        std::string xml =
            "<A@><AppInfo@ InBuildProgram='1'><GarbageCatagory@><GarbageInfo@/><GarbageInfo@/></GarbageCatagory>"
            "<GarbageCatagory@><GarbageInfo@/></GarbageCatagory></AppInfo><AppInfo@ ?><GarbageCatagory@>"
            "<GarbageInfo@/></GarbageCatagory></AppInfo></A>";
        xml.replace(xml.find('?'), 1, secondIsPresent ? "InBuildProgram='1'" : "");
        for (const char state : states) {
            const std::string value = state == 'x' ? "abc" : state == '~' ? "-5" : std::string(1, state);
            xml.replace(xml.find('@'), 1, " Name='' Path=''" + (state == '-' ? "" : " SelState='" + value + "'"));
        }
        return xml;
    }
    template <class Node>
    void Add(Node& node) {
        m_nodes.push_back([&node](char operation, uint32_t state) {
            if (operation == 'T') node.Toggle();
            if (operation == 'S') node.SetState(state);
            if (operation == 'R') node.Recompute(state);
            if (operation == 'C') node.RecomputeFromChild(state);
            if (operation == 'X') node.ResetAll();
            return node.GetState();
        });
        if constexpr (!requires { node.EnumFound(nullptr); }) {
            for (const auto& child : ChildrenOf(node))
                Add(*child);
        }
    }

    const Category m_category;
    std::vector<std::function<uint32_t(char, uint32_t)>> m_nodes;
};

}  // namespace

TEST(Selection, IsReadOrInherited) {
    const char* const kCases[][2] = {
        {"----------", "0000000000"}, {"2---------", "2222222222"}, {"1---------", "1000000000"},
        {"21----2---", "2100002222"}, {"02-0----1-", "0220222010"}, {"7-----~---", "777777~777"},
        {"~---------", "~~~~~~~~~~"}, {"2x---2----", "2000022222"}, {"x12x--2-~-", "01202020~~"},
    };
    for (const auto& [file, loaded] : kCases)
        EXPECT_EQ(Tree(file).States(), loaded) << file;
}

TEST(Selection, ClimbsAndDescends) {
    const struct {
        const char* before;
        char operation;
        size_t node;
        uint32_t state;
        const char* after;
        bool secondIsPresent = true;
    } kCases[] = {
        // Down: none becomes all; partly, all and nonsense become none.
        {"0000000000", 'T', 0, 0, "2222222222"},
        {"1120200000", 'T', 0, 0, "0000000000"},
        {"7222222222", 'T', 0, 0, "0000000000"},
        // Up from each level, until a level does not change.
        {"1112000000", 'T', 4, 0, "1122200000"},
        {"1122200000", 'T', 5, 0, "1222222000"},
        {"1222222000", 'T', 7, 0, "2222222222"},
        {"2222222222", 'T', 3, 0, "1110222222"},
        {"7777777777", 'T', 6, 0, "1177700777"},
        {"1112000000", 'R', 4, 2, "1122200000"},
        {"1112200000", 'R', 2, 2, "1122200000"},
        {"2222222222", 'C', 0, 0, "1222222222"},
        // An equal state stops it, although the children differ.
        {"2220222222", 'T', 3, 0, "2222222222"},
        {"0002200000", 'T', 3, 0, "0000200000"},
        {"1112200000", 'R', 2, 1, "1112200000"},
        // Absent applications do not count.
        {"1122200000", 'T', 5, 0, "2222222000", false},
        // Without an upward call.
        {"0000000000", 'S', 2, 2, "0022200000"},
        {"0000000000", 'S', 0, 7, "7777777777"},
    };
    for (const auto& test : kCases) {
        const Tree tree(test.before, test.secondIsPresent);
        tree.Do(test.operation, test.node, test.state);
        EXPECT_EQ(tree.States(), test.after) << test.before << test.operation << test.node;
        tree.Do('X', 0, 0);
        EXPECT_EQ(tree.States(), test.before) << "restored";
    }
}
