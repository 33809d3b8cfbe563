# Functions for those who build component libraries and applications that use them.
#
#   lyr_add_component_library(<name> SOURCES <source>... [DICTIONARIES <file>...] [BASE] [NO_INSTALL])
#
# A library lib<name>.so, which is loaded when something of it is asked for. The build writes its
# dictionary files, out of the records in it and the lines of the DICTIONARIES, which are written by
# hand and have any names that end in .dicts, .iidts or .clsidts. It fails, and leaves none behind,
# when they contradict each other or what the library exports. BASE: other libraries link with it,
# for the base classes in it.
#
#   lyr_add_application(<name> SOURCES <source>... [COMPONENTS <library>...] [WITH_RUNTIME]
#                       [NO_INSTALL])
#
# A program that finds the component libraries through its run path, built and installed. The build
# compares the COMPONENTS with each other, and fails when two of them contradict. WITH_RUNTIME
# installs libLYRComponentModel and libLYRSysTS with it.
#
#   lyr_test_environment(<test> [COMPONENTS <library>...])
#
# Has the test of that name, in this directory, find dictionaries and libraries: those of the
# COMPONENTS, or of all component libraries added before.
#
# Both kinds of targets are ordinary ones and can be changed as such. Variables, all with a default:
#   LYR_COMPONENT_OUTPUT_DIR   where component libraries are built, "components" in the build folder
#   LYR_COMPONENT_INSTALL_DIR  where they are installed, their dictionaries in "dictionary" there;
#                              below the prefix, <lib>/<name of the top project>
#   LYR_PROGRAM                the program `lyr` to use, where that of the package cannot run or is
#                              missing: in a cross build one of the machine that builds
cmake_policy(VERSION 3.25)

function(lyr_add_component_library name)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "BASE;NO_INSTALL" "" "SOURCES;DICTIONARIES")
    _lyr_check_call(lyr_add_component_library ${name} "SOURCES, DICTIONARIES, BASE, NO_INSTALL")
    _lyr_find_folders()
    if(ARG_BASE)
        set(type SHARED)
    else()
        set(type MODULE)
    endif()
    add_library(${name} ${type} ${ARG_SOURCES})
    _lyr_set_up(${name})
    set(handWritten)
    foreach(file IN LISTS ARG_DICTIONARIES)
        cmake_path(ABSOLUTE_PATH file BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} NORMALIZE)
        list(APPEND handWritten ${file})
    endforeach()
    set(dictionary ${output}/dictionary/${name})
    list(TRANSFORM suffixes PREPEND ${dictionary}/lib${name} OUTPUT_VARIABLE files)
    # Beside its own folder, where a base library or an extended class's library is.
    set_target_properties(${name} PROPERTIES
        LIBRARY_OUTPUT_DIRECTORY ${output}
        INSTALL_RPATH "$ORIGIN;$ORIGIN/${componentsToLib}"
        LYR_DICTIONARY "${dictionary}"
        LYR_HAND_WRITTEN "${handWritten}")
    set_property(GLOBAL APPEND PROPERTY LYR_COMPONENT_LIBRARIES ${name})

    _lyr_add_check(${name}_dictionaries ALL
        COMMENT "Writing the dictionary files of ${name}"
        OUTPUT ${files}
        ARGUMENTS -o ${dictionary} --name lib${name}
        LIBRARIES ${name})

    if(NOT ARG_NO_INSTALL)
        install(TARGETS ${name} LIBRARY DESTINATION ${components})
        install(FILES ${files} DESTINATION ${components}/dictionary)
    endif()
endfunction()

function(lyr_add_application name)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "WITH_RUNTIME;NO_INSTALL" "" "SOURCES;COMPONENTS")
    _lyr_check_call(lyr_add_application ${name} "SOURCES, COMPONENTS, WITH_RUNTIME, NO_INSTALL")
    _lyr_check_components(lyr_add_application ${name})
    _lyr_find_folders()
    add_executable(${name} ${ARG_SOURCES})
    _lyr_set_up(${name})
    # Component libraries are loaded on behalf of libLYRSysTS, where a run path of the new kind does
    # not count.
    target_link_options(${name} PRIVATE LINKER:--disable-new-dtags)
    _lyr_find_properties(LIBRARY_OUTPUT_DIRECTORY libraries ${ARG_COMPONENTS})
    set_target_properties(${name} PROPERTIES
        BUILD_RPATH "${libraries}"
        INSTALL_RPATH "$ORIGIN/${binToComponents};$ORIGIN/${binToLib}")

    if(ARG_COMPONENTS)
        set(checked ${CMAKE_CURRENT_BINARY_DIR}/${name}-$<CONFIG>.checked)
        _lyr_add_check(${name}_components
            COMMENT "Comparing the component libraries of ${name}"
            OUTPUT ${checked}
            ARGUMENTS --check
            LIBRARIES ${ARG_COMPONENTS}
            THEN COMMAND ${CMAKE_COMMAND} -E touch ${checked})
        list(TRANSFORM ARG_COMPONENTS APPEND _dictionaries OUTPUT_VARIABLE dictionaries)
        add_dependencies(${name} ${name}_components ${dictionaries})
    endif()

    if(NOT ARG_NO_INSTALL)
        install(TARGETS ${name} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
        if(ARG_WITH_RUNTIME)
            _lyr_install_runtime()
        endif()
    endif()
endfunction()

function(lyr_test_environment test)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "COMPONENTS")
    if(NOT TEST ${test})
        message(FATAL_ERROR "lyr_test_environment(${test}): this directory has no test of that name")
    endif()
    _lyr_check_components(lyr_test_environment ${test})
    if(NOT ARG_COMPONENTS)
        get_property(ARG_COMPONENTS GLOBAL PROPERTY LYR_COMPONENT_LIBRARIES)
    endif()
    _lyr_find_properties(LIBRARY_OUTPUT_DIRECTORY libraries ${ARG_COMPONENTS})
    _lyr_find_properties(LYR_DICTIONARY dictionaries ${ARG_COMPONENTS})
    list(JOIN libraries : libraries)
    list(JOIN dictionaries : dictionaries)
    set_property(TEST ${test} APPEND PROPERTY ENVIRONMENT_MODIFICATION
        "LYRDictionaryPath=path_list_prepend:${dictionaries}"
        "LYRDictionaryNoPathNoFallback=unset:"
        "LD_LIBRARY_PATH=path_list_prepend:${libraries}")
endfunction()

# What follows is for the functions above alone.

# That the caller's arguments are known and that the target can work at all.
macro(_lyr_check_call function name known)
    if(ARG_UNPARSED_ARGUMENTS)
        list(GET ARG_UNPARSED_ARGUMENTS 0 unknown)
        message(FATAL_ERROR "${function}(${name}): \"${unknown}\" is no argument of it; "
            "it takes ${known}")
    endif()
    if(NOT ARG_SOURCES)
        message(FATAL_ERROR "${function}(${name}): name its SOURCES")
    endif()
    if("${CMAKE_EXE_LINKER_FLAGS} ${CMAKE_SHARED_LINKER_FLAGS} ${CMAKE_MODULE_LINKER_FLAGS} "
       MATCHES "(^| )-static(-pie)? ")
        message(FATAL_ERROR "${function}(${name}): the linker's flags say -static, and a static "
            "program can't load component libraries; take it out")
    endif()
endmacro()

macro(_lyr_check_components function name)
    foreach(component IN LISTS ARG_COMPONENTS)
        set(dictionary NOTFOUND)
        if(TARGET ${component})
            get_target_property(dictionary ${component} LYR_DICTIONARY)
        endif()
        if(NOT dictionary)
            message(FATAL_ERROR "${function}(${name}): ${component} is no component library; add "
                "it before, with lyr_add_component_library(${component} ...)")
        endif()
    endforeach()
endmacro()

# Folders of the build and, relative to the prefix or each other, of the installation.
macro(_lyr_find_folders)
    include(GNUInstallDirs)
    set(suffixes .dicts .iidts .clsidts)
    set(output ${CMAKE_BINARY_DIR}/components)
    if(LYR_COMPONENT_OUTPUT_DIR)
        set(output ${LYR_COMPONENT_OUTPUT_DIR})
    endif()
    get_property(hasConfigurations GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
    if(hasConfigurations)
        string(APPEND output /$<CONFIG>)
    endif()
    set(components ${CMAKE_INSTALL_LIBDIR}/${CMAKE_PROJECT_NAME})
    if(LYR_COMPONENT_INSTALL_DIR)
        set(components ${LYR_COMPONENT_INSTALL_DIR})
    endif()
    foreach(folder IN ITEMS CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_BINDIR components)
        cmake_path(ABSOLUTE_PATH ${folder} BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}
            OUTPUT_VARIABLE full_${folder})
    endforeach()
    file(RELATIVE_PATH binToLib ${full_CMAKE_INSTALL_BINDIR} ${full_CMAKE_INSTALL_LIBDIR})
    file(RELATIVE_PATH binToComponents ${full_CMAKE_INSTALL_BINDIR} ${full_components})
    file(RELATIVE_PATH componentsToLib ${full_components} ${full_CMAKE_INSTALL_LIBDIR})
endmacro()

# What libraries and programs have in common. Hidden: what two libraries define under one name, such
# as what is made of a template, stays apart.
function(_lyr_set_up target)
    target_link_libraries(${target} PUBLIC LYR::ComponentModel)
    set_target_properties(${target} PROPERTIES
        C_VISIBILITY_PRESET hidden CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
endfunction()

# The different values that a property has in the targets.
function(_lyr_find_properties property result)
    set(values)
    foreach(target IN LISTS ARGN)
        get_target_property(value ${target} ${property})
        list(APPEND values ${value})
    endforeach()
    list(REMOVE_DUPLICATES values)
    set(${result} ${values} PARENT_SCOPE)
endfunction()

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
        set(why "the package was built without it, for want of libelf or CLI11")
        if(CMAKE_CROSSCOMPILING)
            set(why "this is a cross build, which needs one of the machine that builds")
        endif()
        message(FATAL_ERROR "The program lyr, which makes the dictionary files, is missing: ${why}. "
            "Install it, or name it: -D LYR_PROGRAM=<path>")
    endif()
    if(NOT EXISTS "${LYR_PROGRAM}")
        message(FATAL_ERROR "LYR_PROGRAM names \"${LYR_PROGRAM}\", which is not there; "
            "it is the path of the program lyr")
    endif()
    set(${result} ${LYR_PROGRAM} PARENT_SCOPE)
endfunction()

function(_lyr_install_runtime)
    get_target_property(isImported LYR::ComponentModel IMPORTED)
    if(isImported)
        install(IMPORTED_RUNTIME_ARTIFACTS LYR::ComponentModel LYR::SysTS
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
    else()
        install(TARGETS LYRComponentModel LYRSysTS
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} NAMELINK_SKIP)
    endif()
endfunction()
