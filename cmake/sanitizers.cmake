# ORB_SANITIZE applies to everything in the build, so that no object goes unwatched.
if(ORB_SANITIZE)
  add_compile_options(-fsanitize=${ORB_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${ORB_SANITIZE})
endif()
