# The sanitizer build: AddressSanitizer (with leak checking) and UndefinedBehaviorSanitizer,
# with every report fatal so that a test run fails on the first finding.
if(NQ_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
    add_link_options(-fsanitize=address,undefined -fno-sanitize-recover=all)
endif()
