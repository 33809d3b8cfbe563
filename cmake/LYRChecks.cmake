# What has the program `lyr` look at component libraries and dictionaries, in builds and tests.
#
#   lyr_add_dictionary_check(<name> [PROGRAM <target or file>] [DICTIONARIES <folder>...]
#                            [LIBRARIES <folder or target>...] [IGNORE <kind[:glob]>...]
#                            [ERROR <kind>...] [BASELINE <file>] [STRICT])
#
# A test of that name, which has `lyr check` go over folders of dictionaries and the libraries that
# they lead to, and fails with its errors, with STRICT also with its warnings. The PROGRAM is the one
# that asks; one that lyr_add_application has made brings its folders, and the DICTIONARIES and
# LIBRARIES come before them. IGNORE, ERROR and BASELINE are options of `lyr check`. In a cross build
# the test is there and disabled, since the machine that builds has other libraries.

function(lyr_add_dictionary_check name)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "STRICT" "PROGRAM;BASELINE"
        "DICTIONARIES;LIBRARIES;IGNORE;ERROR")
    _lyr_check_arguments(lyr_add_dictionary_check ${name}
        "PROGRAM, DICTIONARIES, LIBRARIES, IGNORE, ERROR, BASELINE, STRICT")
    set(dictionaries ${ARG_DICTIONARIES})
    set(libraries)
    foreach(library IN LISTS ARG_LIBRARIES)
        if(TARGET "${library}")
            set(library $<TARGET_FILE_DIR:${library}>)
        endif()
        list(APPEND libraries ${library})
    endforeach()
    set(asker ${ARG_PROGRAM})
    if(TARGET "${asker}")
        get_target_property(searched ${asker} LYR_SEARCHED)
        if(searched)
            list(APPEND dictionaries $<GENEX_EVAL:$<TARGET_PROPERTY:${asker},LYR_DICTIONARY_PATH>>)
            list(APPEND libraries $<GENEX_EVAL:$<TARGET_PROPERTY:${asker},LYR_LIBRARY_PATH>>)
        endif()
        set(asker $<TARGET_FILE:${asker}>)
    endif()
    if(NOT dictionaries)
        message(FATAL_ERROR "lyr_add_dictionary_check(${name}): name its DICTIONARIES, or as its "
            "PROGRAM one that lyr_add_application has made")
    endif()
    if(CMAKE_CROSSCOMPILING)
        add_test(NAME ${name} COMMAND ${CMAKE_COMMAND} -E false)
        set_property(TEST ${name} PROPERTY DISABLED ON)
        message(STATUS "The test ${name} is disabled: a cross build can't look at libraries of "
            "the machine that it is for")
        return()
    endif()

    _lyr_make_absolute(dictionaries libraries asker ARG_BASELINE)
    set(options)
    if(libraries)
        list(JOIN libraries : libraries)
        list(APPEND options --libraries ${libraries})
    endif()
    if(asker)
        list(APPEND options --program ${asker})
    endif()
    foreach(kind IN LISTS ARG_IGNORE)
        list(APPEND options --ignore ${kind})
    endforeach()
    foreach(kind IN LISTS ARG_ERROR)
        list(APPEND options --error ${kind})
    endforeach()
    if(ARG_BASELINE)
        list(APPEND options --baseline ${ARG_BASELINE})
    endif()
    if(ARG_STRICT)
        list(APPEND options --strict)
    endif()
    list(JOIN dictionaries : dictionaries)
    _lyr_find_program(program)
    add_test(NAME ${name} COMMAND ${program} check --dictionaries ${dictionaries} ${options})
endfunction()

# What follows is for LYRComponents.cmake.

# A target that has `lyr manifest` look at libraries and what is written by hand for them, again
# when any of it has changed, or which they are, or `lyr`, and after each failure.
function(_lyr_add_check target)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "ALL" "COMMENT" "OUTPUT;ARGUMENTS;LIBRARIES;THEN")
    set(paths)
    set(handWritten)
    foreach(library IN LISTS ARG_LIBRARIES)
        list(APPEND paths $<TARGET_FILE:${library}>)
        get_target_property(files ${library} LYR_HAND_WRITTEN)
        if(files)
            list(APPEND handWritten ${files})
        endif()
    endforeach()
    set(arguments ${ARG_ARGUMENTS})
    if(handWritten)
        list(APPEND arguments --with ${handWritten})
    endif()
    _lyr_find_program(program)
    set(all)
    if(ARG_ALL)
        set(all ALL)
    endif()
    add_custom_command(OUTPUT ${ARG_OUTPUT}
        COMMAND ${program} manifest ${paths} ${arguments}
        ${ARG_THEN}
        DEPENDS ${ARG_LIBRARIES} ${handWritten} ${program}
        COMMENT ${ARG_COMMENT} VERBATIM)
    add_custom_target(${target} ${all} DEPENDS ${ARG_OUTPUT})
endfunction()

# A target that has `lyr check` look at what the program finds, after all that it finds is built,
# again when any of it has changed, and after each failure. What that is, the project's end tells.
function(_lyr_add_check_of_found name)
    if(CMAKE_CROSSCOMPILING)
        message(STATUS "What ${name} finds is not checked: a cross build can't look at libraries "
            "of the machine that it is for")
        return()
    endif()
    _lyr_find_program(program)
    set(checked ${CMAKE_CURRENT_BINARY_DIR}/${name}-$<CONFIG>.found)
    set(ofProgram "TARGET_PROPERTY:${name}")
    add_custom_command(OUTPUT ${checked}
        COMMAND ${program} check --program $<TARGET_FILE:${name}>
            --libraries $<GENEX_EVAL:$<${ofProgram},LYR_LIBRARY_PATH>>
            --dictionaries $<GENEX_EVAL:$<${ofProgram},LYR_DICTIONARY_PATH>>
        COMMAND ${CMAKE_COMMAND} -E touch ${checked}
        DEPENDS ${name} ${program} $<GENEX_EVAL:$<${ofProgram},LYR_FOUND>>
        COMMENT "Checking what ${name} finds" VERBATIM)
    add_custom_target(${name}_found ALL DEPENDS ${checked})
endfunction()

# The program `lyr`: the one asked for, or that of this package if it runs here, or one of this
# machine.
function(_lyr_find_program result)
    if(NOT LYR_PROGRAM AND TARGET LYR::lyr AND NOT CMAKE_CROSSCOMPILING)
        set(${result} $<TARGET_FILE:LYR::lyr> PARENT_SCOPE)
        return()
    endif()
    # In PATH alone: the other places may be those of the machine that it is built for.
    find_program(LYR_PROGRAM lyr
        DOC "The program lyr, of the machine that builds"
        NO_PACKAGE_ROOT_PATH NO_CMAKE_PATH NO_CMAKE_ENVIRONMENT_PATH NO_CMAKE_SYSTEM_PATH
        NO_CMAKE_FIND_ROOT_PATH)
    if(NOT LYR_PROGRAM)
        set(why "the package was built without it, for want of libelf, CLI11 or nlohmann-json")
        if(CMAKE_CROSSCOMPILING)
            set(why "this is a cross build, which needs one of the machine that builds")
        endif()
        message(FATAL_ERROR "The program lyr, which makes and checks dictionary files, is missing: "
            "${why}. Install it, or name it: -D LYR_PROGRAM=<path>")
    endif()
    if(NOT EXISTS "${LYR_PROGRAM}")
        message(FATAL_ERROR "LYR_PROGRAM names \"${LYR_PROGRAM}\", which is not there; "
            "it is the path of the program lyr")
    endif()
    set(${result} ${LYR_PROGRAM} PARENT_SCOPE)
endfunction()

# Names in properties of the program what it finds: the component libraries, of the whole project,
# in the folders that it searches. Its check is made after them, and with it, if at all.
function(_lyr_name_found program)
    get_target_property(searched ${program} LYR_SEARCHED)
    if(NOT searched)
        return()
    endif()
    get_target_property(components ${program} LYR_COMPONENTS)
    get_property(targets GLOBAL PROPERTY LYR_TARGETS)
    set(folders)
    set(files)
    set(made)
    foreach(target IN LISTS targets)
        get_target_property(folder ${target} LYR_OUTPUT_FOLDER)
        if(NOT folder IN_LIST searched)
            continue()
        endif()
        list(APPEND folders ${folder})
        _lyr_is_built_with_all(${target} isBuilt)
        if(isBuilt OR target IN_LIST components)
            get_target_property(dictionaries ${target} LYR_DICTIONARIES)
            list(APPEND files $<TARGET_FILE:${target}> ${dictionaries})
            list(APPEND made ${target} ${target}_dictionaries)
        endif()
    endforeach()
    list(REMOVE_DUPLICATES folders)
    if(NOT folders)
        set(folders ${searched})
    endif()
    list(TRANSFORM folders APPEND /dictionary OUTPUT_VARIABLE dictionaries)
    list(JOIN folders : folders)
    list(JOIN dictionaries : dictionaries)
    set_target_properties(${program} PROPERTIES
        LYR_FOUND "${files}" LYR_LIBRARY_PATH "${folders}" LYR_DICTIONARY_PATH "${dictionaries}")
    if(TARGET ${program}_found)
        add_dependencies(${program}_found ${made})
        get_target_property(isExcluded ${program} EXCLUDE_FROM_ALL)
        set_property(TARGET ${program}_found PROPERTY EXCLUDE_FROM_ALL ${isExcluded})
    endif()
endfunction()

# Whether a build of everything builds the target.
function(_lyr_is_built_with_all target result)
    get_target_property(isExcluded ${target} EXCLUDE_FROM_ALL)
    get_target_property(directory ${target} SOURCE_DIR)
    while(directory AND NOT isExcluded)
        get_property(isExcluded DIRECTORY ${directory} PROPERTY EXCLUDE_FROM_ALL)
        get_property(directory DIRECTORY ${directory} PROPERTY PARENT_DIRECTORY)
    endwhile()
    if(isExcluded)
        set(${result} OFF PARENT_SCOPE)
    else()
        set(${result} ON PARENT_SCOPE)
    endif()
endfunction()
