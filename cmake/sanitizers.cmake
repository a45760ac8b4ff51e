# ORB_SANITIZE applies to everything in the build, so that no object goes unwatched; fuzzers run
# under the address and undefined-behaviour sanitizers with their own instrumentation.
if(ORB_FUZZERS)
  set(ORB_SANITIZE "address,undefined")
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(ORB_SANITIZE)
  add_compile_options(-fsanitize=${ORB_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${ORB_SANITIZE})
endif()
