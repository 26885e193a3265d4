/* A small driver for the C that "quarnc -c -main abro abro.qn" writes.
   Each line of the standard input is one reaction: the names of the inputs present. */
#include <stdio.h>
#include <string.h>
#include "abro.h"

static int present(const char* line, const char* name) {
  char words[256];
  strncpy(words, line, sizeof words - 1);
  words[sizeof words - 1] = 0;
  for (char* w = strtok(words, " \t\n"); w; w = strtok(NULL, " \t\n"))
    if (strcmp(w, name) == 0) return 1;
  return 0;
}

int main(void) {
  char line[256];
  int n = 0;
  abro_reset_automaton();
  while (fgets(line, sizeof line, stdin)) {
    int O = 0;
    abro_automaton(present(line, "A"), present(line, "B"), present(line, "R"), &O);
    line[strcspn(line, "\n")] = 0;
    printf("reaction %2d  inputs: %-6s  outputs: %s\n", ++n, line, O ? "O" : "");
  }
  return 0;
}
