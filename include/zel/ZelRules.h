// The rule set of a drawing.
#pragma once

// CLASSIC keeps the behaviour that host programs have relied on, with its known traps; EXACT is for new
// drawings. docs/rules.md lists every difference. A drawing root carries its rule set; every object of the
// tree asks it with Zel2::Rules().
enum class ZelRules { CLASSIC, EXACT };
