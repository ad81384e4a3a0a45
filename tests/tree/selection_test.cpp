#include "tests/tree/treenode.h"

namespace {

// A tree of states, one character each: "1[2(202)]a0[...]" is a category in state 1 with the application 2, which has
// the garbage category 2 with the rules 0 and 2, and an absent (a) application 0. '-' stands for no state of its own.
std::string XmlOf(const std::string& states) {
    const auto node = [](const std::string& tag, char state) {
        const std::string value = state == 'x' ? "abc" : state == '~' ? "-5" : std::string(1, state);
        return "<" + tag + " Name='' Path=''" + (state == '-' ? "" : " SelState='" + value + "'");
    };
    std::string xml = node("A", states[0]) + ">";
    for (size_t i = 1; i < states.size(); ++i) {
        switch (states[i]) {
            case '[': {
                const bool absent = states[i + 1] == 'a';
                if (absent) ++i;
                xml += node("AppInfo", states[++i]) + (absent ? ">" : " InBuildProgram='1'>");
                break;
            }
            case '(':
                xml += node("GarbageCatagory", states[++i]) + ">";
                break;
            case ')':
                xml += "</GarbageCatagory>";
                break;
            case ']':
                xml += "</AppInfo>";
                break;
            default:
                xml += node("GarbageInfo", states[i]) + "/>";
        }
    }
    return xml + "</A>";
}

std::string StatesOf(CAppCatagory& category) {
    const auto digit = [](auto& node) { return node.GetState() > 9 ? "~" : std::to_string(node.GetState()); };
    std::string states = digit(category);
    for (const auto& app : ChildrenOf(category)) {
        states += (app->IsAppPresent() ? "[" : "[a") + digit(*app);
        for (const auto& garbage : ChildrenOf(*app)) {
            states += "(" + digit(*garbage);
            for (const auto& rule : ChildrenOf(*garbage))
                states += digit(*rule);
            states += ")";
        }
        states += "]";
    }
    return states;
}

template <class Node>
void Apply(Node& node, char operation, uint32_t state) {
    switch (operation) {
        case 'T':
            return node.Toggle();
        case 'S':
            return node.SetState(state);
        case 'R':
            return node.Recompute(state);
        case 'C':
            return node.RecomputeFromChild(state);
        default:
            return node.ResetAll();
    }
}

// "T 010" toggles rule 0 of garbage category 1 of application 0; "S2" sets the category's state to 2.
void Apply(const Category& category, const std::string& step) {
    const size_t blank = step.find(' ');
    const auto state = static_cast<uint32_t>(blank == 2 || step.size() == 2 ? step[1] - '0' : 0);
    const std::string path = blank == std::string::npos ? "" : step.substr(blank + 1);
    const auto at = [&path](size_t i) { return static_cast<size_t>(path[i] - '0'); };
    if (path.empty()) return Apply(*category, step[0], state);
    if (path.size() == 1) return Apply(category.App(at(0)), step[0], state);
    if (path.size() == 2) return Apply(category.Garbage(at(0), at(1)), step[0], state);
    Apply(category.Rule(at(0), at(1), at(2)), step[0], state);
}

}  // namespace

TEST(Selection, IsReadOrInherited) {
    const struct {
        const char* file;
        const char* loaded;
    } kCases[] = {
        {"-[-(--)]", "0[0(00)]"}, {"2[-(--)]", "2[2(22)]"}, {"1[-(--)]", "1[0(00)]"},
        {"2[1(--)]", "2[1(00)]"}, {"0[2(-0)]", "0[2(20)]"}, {"7[-(-)]", "7[7(7)]"},
        {"~[-(-)]", "~[~(~)]"},   {"2[x(-2)]", "2[0(02)]"}, {"x[1(2x)]", "0[1(20)]"},
    };
    for (const auto& test : kCases)
        EXPECT_EQ(StatesOf(*Category(XmlOf(test.file))), test.loaded) << test.file;
}

TEST(Selection, ClimbsAndDescends) {
    const struct {
        const char* before;
        const char* step;
        const char* after;
    } kCases[] = {
        // Down: none becomes all; partly, all and nonsense become none.
        {"0[0(00)]", "T", "2[2(22)]"},
        {"1[1(102)]", "T", "0[0(000)]"},
        {"2[2(220)]", "T", "0[0(000)]"},
        {"7[2(22)]", "T", "0[0(00)]"},
        // Up from each level, until a level does not change.
        {"1[1(120)]", "T 001", "2[2(222)]"},
        {"2[2(222)]", "T 000", "1[1(102)]"},
        {"1[1(102)]", "T 001", "0[0(000)]"},
        {"1[1(102)(22)]", "T 000", "2[2(222)(22)]"},
        {"2[2(222)(22)]", "T 01", "1[1(222)(00)]"},
        {"2[2(22)][2(22)]", "T 1", "1[2(22)][0(00)]"},
        {"1[1(20)][0(00)]", "T 10", "1[1(20)][2(22)]"},
        // An equal state stops it, although the children differ.
        {"2[2(220)]", "T 001", "2[2(222)]"},
        {"0[0(022)]", "T 000", "0[0(002)]"},
        {"1[1(122)]", "R1 00", "1[1(122)]"},
        // Absent applications do not count at the top; below it everything counts.
        {"2[a2(22)][2(22)]", "T 1", "0[a2(22)][0(00)]"},
        {"2[a2(22)]", "R0", "0[a2(22)]"},
        {"2[a2(22)]", "C0", "0[a2(22)]"},
        {"2[2(22)]", "R0", "1[2(22)]"},
        {"2[2(22)]", "C0", "1[2(22)]"},
        {"0[a0(110)(00)]", "T 010", "1[a1(110)(22)]"},
        {"2", "R0", "0"},
        // Without an upward call.
        {"0[0(000)]", "S2 00", "0[0(222)]"},
        {"0[0(000)]", "S1", "1[1(111)]"},
        {"0[0(000)]", "S7 0", "0[7(777)]"},
        // From the leaf.
        {"1[1(120)]", "R2 001", "2[2(222)]"},
        {"2[2(222)]", "C0 000", "1[1(102)]"},
        {"7[7(77)]", "T 000", "0[0(00)]"},
    };
    for (const auto& test : kCases) {
        const Category category(XmlOf(test.before));
        ASSERT_EQ(StatesOf(*category), test.before);
        Apply(category, test.step);
        EXPECT_EQ(StatesOf(*category), test.after) << test.before << " " << test.step;
        Apply(category, "X");
        EXPECT_EQ(StatesOf(*category), test.before) << "restored";
    }
}

TEST(Selection, ResetAllZeroesTotalsBelowOnly) {
    const Category category(XmlOf("2[2(22)][2(22)]"));
    category.Rule(0).AddFound(5);
    category.Garbage(0).AddFound(5);
    category.App(0).AddFound(5);
    category->AddFound(5);
    category.App(0).ResetAll();
    EXPECT_EQ(category.Rule(0).GetTotalSize() + category.Garbage(0).GetTotalSize() + category.App(0).GetTotalSize(),
              0u);
    EXPECT_EQ(category->GetTotalSize(), 5u);
    EXPECT_EQ(category->GetPendingCount(), 1u);
}
