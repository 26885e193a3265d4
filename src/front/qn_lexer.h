// The Quarn scanner class qnFlexLexer. FlexLexer.h declares one scanner class per
// inclusion, named by yyFlexLexer; this header is the one place that declares ours.
#pragma once

#undef yyFlexLexer
#define yyFlexLexer qnFlexLexer
#include <FlexLexer.h>
#undef yyFlexLexer
