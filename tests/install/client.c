/* A C99 client of the installed library. */
#include <stdio.h>
#include <string.h>

#include <vrks.h>

int main(void) {
  const VrkLibraryVersion* v = vrksGetLibVersion();
  Vrk32fc tone = {1.0f, -2.0f};
  Vrk32fc* a = vrksMalloc_32fc(100);
  Vrk32fc* b = vrksMalloc_32fc(100);
  int ok = a != NULL && b != NULL && v->versionMajor == 6 && strcmp(v->targetTag, "e9") == 0;
  ok = ok && vrksSet_32fc(tone, a, 100) == vrkStatusOk;
  ok = ok && vrksFlip_32fc(a, b, 100) == vrkStatusOk;
  ok = ok && b[99].re == 1.0f && b[0].im == -2.0f;
  ok = ok && vrksCopy_32fc(NULL, b, 100) == vrkStatusNullPointer;
  vrksFree(a);
  vrksFree(b);
  printf("%s %s\n", v->versionText, ok ? "ok" : "FAILED");
  return ok ? 0 : 1;
}
