// The compiled module scanner class qncFlexLexer. FlexLexer.h declares one scanner class
// per inclusion, named by yyFlexLexer; this header is the one place that declares ours.
#pragma once

#undef yyFlexLexer
#define yyFlexLexer qncFlexLexer
#include <FlexLexer.h>
#undef yyFlexLexer
