// tests/contract/consumers/c/libraries.c: a library of the caller's, loaded twice and asked for a
// text.
#include <stddef.h>
#include <string.h>
#include <wchar.h>

#include "../expect.h"
#include "areas.h"
#include "fileutil/conversions.h"
#include "portability/dynlib.h"

static void use_table(const char* plugin) {
  char* message = NULL;
  void* library = voxLoadLibrary(plugin, &message);
  EXPECT(library != NULL && message != NULL && message[0] == '\0');
  EXPECT(voxLoadLibrary(plugin, NULL) == library);
  EXPECT(pDynamicLibraryList[0] != NULL && pDynamicLibraryList[0]->references == 2);
  EXPECT(strcmp(pDynamicLibraryList[0]->path, plugin) == 0);

  const int* attached = voxGetProcAddress(library, "plugin_attached", &message);
  EXPECT(attached != NULL && *attached == 1);
  EXPECT(voxGetProcAddress(library, "nothing of the kind", &message) == NULL);
  EXPECT(message[0] != '\0');
  char text[8];
  EXPECT(voxLoadString(library, 7, text, (int32_t)sizeof text) == 5 && strcmp(text, "seven") == 0);
  EXPECT(voxDisableThreadLibraryCalls(library) == 1);
  EXPECT(voxFreeLibrary(library) == 1);
  EXPECT(voxFreeLibrary(library) == 1);
  nErrno = 0;
  EXPECT(voxFreeLibrary(library) == 0);
  EXPECT(nErrno == kErrInvalid);
}

static void use_loader(const char* plugin) {
  void* image = NULL;
  char message[1024] = "";
  EXPECT(load_shared_object_image(&image, plugin, message) == 1);
  EXPECT(image != NULL && message[0] == '\0');
  EXPECT(unload_shared_object_image(image) == 1);
  EXPECT(load_shared_object_image(&image, "/nowhere/at/all", message) == 0);
  EXPECT(message[0] != '\0');
  EXPECT(voxTranslateMessage(NULL) == 1);
}

static void use_wide_path(const char* plugin) {
  wchar_t path[1024];
  int room = 1024;
  EXPECT(voxcomn_utf8_to_unicode(plugin, path, &room) == 0);
  wchar_t* message = NULL;
  void* library = voxLoadLibraryW(path, &message);
  EXPECT(library != NULL && message != NULL && message[0] == L'\0');
  EXPECT(voxFreeLibrary(library) == 1);
  nErrno = 0;
  EXPECT(voxLoadLibraryW(NULL, NULL) == NULL);
  EXPECT(nErrno == kErrInvalid);
}

void use_libraries(const char* plugin) {
  use_table(plugin);
  use_loader(plugin);
  use_wide_path(plugin);
}
