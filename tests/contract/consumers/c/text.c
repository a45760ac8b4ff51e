// tests/contract/consumers/c/text.c: numbers, tokens, the locale's text and UTF-8.
#include <ctype.h>
#include <stddef.h>
#include <string.h>
#include <wchar.h>

#include "../expect.h"
#include "areas.h"
#include "fileutil/conversions.h"

void use_numbers(void) {
  char digits[24];
  EXPECT(voxItoa(-26, digits, 10) == digits && strcmp(digits, "-26") == 0);
  EXPECT(strcmp(voxItot(255, digits, 16), "ff") == 0);
  EXPECT(strcmp(voxUltot(8, digits, 8), "10") == 0);
  EXPECT(strcmp(voxI64toa(-1, digits, 16), "ffffffffffffffff") == 0);
  EXPECT(strcmp(voxI64tot(9000000000, digits, 10), "9000000000") == 0);
  EXPECT(voxItoa(1, digits, 2) == NULL);
  EXPECT(voxTtoi64("123") == 123);
  EXPECT(voxAtoi64("-5") == -25);
}

void use_text(void) {
  char line[] = "one two";
  char* rest = NULL;
  EXPECT(strcmp(voxTstrtok_r(line, " ", &rest), "one") == 0);
  EXPECT(strcmp(voxTstrtok_r(NULL, " ", &rest), "two") == 0);

  char narrow[16];
  wchar_t wide[16];
  EXPECT(voxStandardUtoA(L"plain", 16, narrow) == 5 && strcmp(narrow, "plain") == 0);
  EXPECT(voxStandardAtoU("plain", 16, wide) == 5 && wcscmp(wide, L"plain") == 0);
  unsigned bytes = sizeof narrow;
  EXPECT(voxcomn_unicode_to_utf8(L"\u20AC", narrow, &bytes) == 0);
  EXPECT(strcmp(narrow, "\xE2\x82\xAC") == 0);
  int characters = 16;
  EXPECT(voxcomn_utf8_to_unicode("\xE2\x82\xAC", wide, &characters) == 0);
  EXPECT(wcscmp(wide, L"\u20AC") == 0);

  EXPECT((isalnum)('7') != 0 && (isalnum)('-') == 0);
  EXPECT((isspace)('\t') != 0 && (isspace)('_') == 0);
  EXPECT((toupper)('q') == 'Q' && (tolower)('Q') == 'q');
}
