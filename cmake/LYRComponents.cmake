# Functions for those who build component libraries and applications that use them.
#
#   lyr_add_component_library(<name> SOURCES <source>... [DICTIONARIES <file>...] [BASE] [PLUGIN]
#                             [NO_INSTALL])
#
# A library lib<name>.so, which is loaded when something of it is asked for. The build writes its
# dictionary files, out of the records in it and the lines of the DICTIONARIES, which are written by
# hand and have any names that end in .dicts, .iidts or .clsidts. It fails, and leaves none behind,
# when they contradict each other or what the library exports. BASE: other libraries link with it,
# for the base classes in it. PLUGIN: programs of others load it, and it finds the component
# libraries and dictionaries beside it by itself.
#
#   lyr_add_application(<name> SOURCES <source>... [COMPONENTS <library>...] [WITH_RUNTIME]
#                       [NO_CHECK] [NO_INSTALL])
#
# A program that finds the component libraries and their dictionaries by itself, in the build folder
# and installed, wherever that tree is moved to. The build compares the COMPONENTS with each other,
# and fails when two of them contradict. When all is built, `lyr check` goes over the dictionaries
# and libraries that the program finds, again when one of them has changed, and the build fails with
# its errors. NO_CHECK leaves that out: for dictionaries that name libraries which are not there
# while the project is built. WITH_RUNTIME installs libLYRComponentModel and libLYRSysTS with it.
#
#   lyr_test_environment(<test or target>)
#
# Has the test of that name, in this directory, find the component libraries of the build, those in
# the folder that is set, and their dictionaries before those of the user: for a program of others.
# Behind gtest_discover_tests(<target>) it takes the target, and is for all tests found in it.
#
# Both kinds of targets are ordinary ones, but for the folders that they are built in, and can be
# changed as such. Variables, all with a default:
#   LYR_OUTPUT_DIR             where both are built, laid out as below the prefix: the build folder
#   LYR_COMPONENT_INSTALL_DIR  where component libraries are installed, their dictionaries in
#                              "dictionary" there; below the prefix, <lib>/<name of the top project>
#   LYR_PROGRAM                the program `lyr` to use, where that of the package cannot run or is
#                              missing: in a cross build one of the machine that builds
#
# A test that looks at dictionaries: LYRChecks.cmake.
cmake_policy(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/LYRChecks.cmake)

function(lyr_add_component_library name)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "BASE;PLUGIN;NO_INSTALL" "" "SOURCES;DICTIONARIES")
    _lyr_check_call(lyr_add_component_library ${name}
        "SOURCES, DICTIONARIES, BASE, PLUGIN, NO_INSTALL")
    _lyr_find_folders()
    if(ARG_BASE)
        set(type SHARED)
    else()
        set(type MODULE)
    endif()
    add_library(${name} ${type} ${ARG_SOURCES})
    _lyr_set_up(${name})
    set(handWritten ${ARG_DICTIONARIES})
    _lyr_make_absolute(handWritten)
    if(ARG_PLUGIN)
        _lyr_name_folders(${name} ${components} ${components})
    endif()
    set(dictionary ${output}/${components}/dictionary)
    list(TRANSFORM suffixes PREPEND ${dictionary}/lib${name} OUTPUT_VARIABLE files)
    set_property(GLOBAL APPEND PROPERTY LYR_DICTIONARIES ${files})
    _lyr_build_in(${name} LIBRARY ${output}/${components})
    set_target_properties(${name} PROPERTIES
        INSTALL_RPATH "$ORIGIN;$ORIGIN/${componentsToLib}"
        LYR_FOLDER ${components}
        LYR_OUTPUT_FOLDER ${output}/${components}
        LYR_DICTIONARIES "${files}"
        LYR_HAND_WRITTEN "${handWritten}")
    set_property(GLOBAL APPEND PROPERTY LYR_TARGETS ${name})

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
    cmake_parse_arguments(PARSE_ARGV 1 ARG "WITH_RUNTIME;NO_CHECK;NO_INSTALL" ""
        "SOURCES;COMPONENTS")
    _lyr_check_call(lyr_add_application ${name}
        "SOURCES, COMPONENTS, WITH_RUNTIME, NO_CHECK, NO_INSTALL")
    _lyr_check_components(lyr_add_application ${name})
    _lyr_find_folders()
    add_executable(${name} ${ARG_SOURCES})
    _lyr_set_up(${name})
    set(folders)
    foreach(component IN LISTS ARG_COMPONENTS)
        get_target_property(folder ${component} LYR_FOLDER)
        list(APPEND folders ${folder})
    endforeach()
    _lyr_name_folders(${name} ${bin} ${folders} ${components})
    _lyr_build_in(${name} RUNTIME ${output}/${bin})
    set_target_properties(${name} PROPERTIES INSTALL_RPATH $ORIGIN/${binToLib} LYR_FOLDER ${bin})
    set_property(GLOBAL APPEND PROPERTY LYR_TARGETS ${name})

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
    list(APPEND folders ${components})
    list(REMOVE_DUPLICATES folders)
    list(TRANSFORM folders PREPEND ${output}/)
    set_target_properties(${name} PROPERTIES
        LYR_SEARCHED "${folders}" LYR_COMPONENTS "${ARG_COMPONENTS}")
    if(ARG_COMPONENTS AND NOT ARG_NO_CHECK)
        _lyr_add_check_of_found(${name})
    endif()

    if(NOT ARG_NO_INSTALL)
        install(TARGETS ${name} RUNTIME DESTINATION ${bin})
        if(ARG_WITH_RUNTIME)
            _lyr_install_runtime(${lib})
        endif()
    endif()
endfunction()

function(lyr_test_environment test)
    _lyr_find_folders()
    set(changes
        "LYRDictionaryPath=path_list_prepend:${output}/${components}/dictionary"
        "LYRDictionaryNoPathNoFallback=unset:"
        "LD_LIBRARY_PATH=path_list_prepend:${output}/${components}")
    if(TEST ${test})
        set_property(TEST ${test} APPEND PROPERTY ENVIRONMENT_MODIFICATION ${changes})
        return()
    endif()
    get_property(scripts DIRECTORY PROPERTY TEST_INCLUDE_FILES)
    if(NOT TARGET ${test} OR NOT scripts MATCHES "/${test}\\[[0-9]+\\]_include")
        message(FATAL_ERROR "lyr_test_environment(${test}): this directory has no test of that "
            "name, and no target in which gtest_discover_tests(${test}), above, finds tests")
    endif()
    # CTest reads this behind what says which tests there are.
    string(REPLACE $<CONFIG> "\${CTEST_CONFIGURATION_TYPE}" changes "${changes}")
    set(script ${CMAKE_CURRENT_BINARY_DIR}/${test}_environment.cmake)
    file(WRITE ${script} "if(${test}_TESTS)
    set_tests_properties(\${${test}_TESTS} PROPERTIES ENVIRONMENT_MODIFICATION \"${changes}\")
endif()
")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${script})
endfunction()

# What follows is for the functions above alone.

# That the caller's arguments are known.
macro(_lyr_check_arguments function name known)
    if(ARG_UNPARSED_ARGUMENTS)
        list(GET ARG_UNPARSED_ARGUMENTS 0 unknown)
        message(FATAL_ERROR "${function}(${name}): \"${unknown}\" is no argument of it; "
            "it takes ${known}")
    endif()
endmacro()

# That they are, and that the target can work at all.
macro(_lyr_check_call function name known)
    _lyr_check_arguments(${function} ${name} "${known}")
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
        if(NOT TARGET ${component}_dictionaries)
            message(FATAL_ERROR "${function}(${name}): ${component} is no component library; add "
                "it before, with lyr_add_component_library(${component} ...)")
        endif()
    endforeach()
endmacro()

# The folders `bin`, `lib` and `components` below the prefix, which are the same below `output`, and
# the ways between them: what finds another file in one tree finds it in the other.
macro(_lyr_find_folders)
    include(GNUInstallDirs)
    set(suffixes .dicts .iidts .clsidts)
    set(output ${CMAKE_BINARY_DIR})
    if(LYR_OUTPUT_DIR)
        set(output ${LYR_OUTPUT_DIR})
        cmake_path(ABSOLUTE_PATH output BASE_DIRECTORY ${CMAKE_BINARY_DIR})
    endif()
    get_property(hasConfigurations GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
    if(hasConfigurations)
        string(APPEND output /$<CONFIG>)
    endif()
    set(bin ${CMAKE_INSTALL_BINDIR})
    set(lib ${CMAKE_INSTALL_LIBDIR})
    set(components ${lib}/${CMAKE_PROJECT_NAME})
    if(LYR_COMPONENT_INSTALL_DIR)
        set(components ${LYR_COMPONENT_INSTALL_DIR})
    endif()
    foreach(folder IN ITEMS bin lib components)
        cmake_path(ABSOLUTE_PATH ${folder} BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX} NORMALIZE)
        cmake_path(IS_PREFIX CMAKE_INSTALL_PREFIX ${${folder}} NORMALIZE isBelow)
        if(NOT isBelow)
            message(FATAL_ERROR "Programs and component libraries find each other below one prefix; "
                "${${folder}} is not below CMAKE_INSTALL_PREFIX, ${CMAKE_INSTALL_PREFIX}. Make "
                "CMAKE_INSTALL_BINDIR, CMAKE_INSTALL_LIBDIR and LYR_COMPONENT_INSTALL_DIR relative")
        endif()
        file(RELATIVE_PATH ${folder} ${CMAKE_INSTALL_PREFIX} ${${folder}})
    endforeach()
    file(RELATIVE_PATH binToLib /${bin} /${lib})
    file(RELATIVE_PATH componentsToLib /${components} /${lib})
    _lyr_finish_later()
endmacro()

# What libraries and programs have in common. Hidden: what two libraries define under one name, such
# as what is made of a template, stays apart. The run path is of the new kind: LD_LIBRARY_PATH
# comes first.
function(_lyr_set_up target)
    target_link_libraries(${target} PUBLIC LYR::ComponentModel)
    target_link_options(${target} PRIVATE LINKER:--enable-new-dtags)
    set_target_properties(${target} PROPERTIES
        C_VISIBILITY_PRESET hidden CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
endfunction()

# Makes the paths in the lists of these names absolute; what a generator expression gives is.
function(_lyr_make_absolute)
    foreach(list IN LISTS ARGN)
        set(paths)
        foreach(path IN LISTS ${list})
            if(NOT path MATCHES "^\\$<")
                cmake_path(ABSOLUTE_PATH path BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} NORMALIZE)
            endif()
            list(APPEND paths "${path}")
        endforeach()
        set(${list} "${paths}" PARENT_SCOPE)
    endforeach()
endfunction()

# Builds the target in the folder, in every configuration, whatever the project sets for others.
function(_lyr_build_in target kind folder)
    set_property(TARGET ${target} PROPERTY ${kind}_OUTPUT_DIRECTORY ${folder})
    foreach(configuration IN LISTS CMAKE_CONFIGURATION_TYPES CMAKE_BUILD_TYPE)
        string(TOUPPER ${configuration} configuration)
        set_property(TARGET ${target} PROPERTY ${kind}_OUTPUT_DIRECTORY_${configuration} ${folder})
    endforeach()
endfunction()

# Compiles into the target, whose file is in the folder `from`, what names others as it loads.
function(_lyr_name_folders name from)
    set(others ${ARGN})
    list(REMOVE_DUPLICATES others)
    set(folders)
    foreach(folder IN LISTS others)
        file(RELATIVE_PATH way /${from} /${folder})
        string(APPEND folders "    {R\"(./${way})\", R\"(./${way}/dictionary)\"},\n")
    endforeach()
    set(source ${CMAKE_CURRENT_BINARY_DIR}/${name}_folders.cpp)
    configure_file(${CMAKE_CURRENT_FUNCTION_LIST_DIR}/LYRFolders.cpp.in ${source} @ONLY)
    target_sources(${name} PRIVATE ${source})
    set_source_files_properties(${source} PROPERTIES
        SKIP_UNITY_BUILD_INCLUSION ON SKIP_PRECOMPILE_HEADERS ON SKIP_AUTOGEN ON)
endfunction()

# What waits until the project has said all that it says.
function(_lyr_finish_later)
    set(atTheEnd DEFER DIRECTORY ${CMAKE_SOURCE_DIR})
    cmake_language(${atTheEnd} CANCEL_CALL lyr_finish)
    cmake_language(${atTheEnd} ID lyr_finish CALL _lyr_finish)
endfunction()

function(_lyr_finish)
    _lyr_remove_old_dictionaries()
    get_property(targets GLOBAL PROPERTY LYR_TARGETS)
    foreach(target IN LISTS targets)
        _lyr_lead_to_linked(${target})
        _lyr_name_found(${target})
    endforeach()
endfunction()

# The run path leads to the component libraries that the target is linked with, as with a base
# library, wherever below the prefix they are installed.
function(_lyr_lead_to_linked target)
    get_target_property(folder ${target} LYR_FOLDER)
    get_target_property(linked ${target} LINK_LIBRARIES)
    foreach(library IN LISTS linked)
        if(TARGET "${library}")
            get_target_property(other ${library} LYR_FOLDER)
            if(other)
                file(RELATIVE_PATH way /${folder} /${other})
                set_property(TARGET ${target} APPEND PROPERTY INSTALL_RPATH $ORIGIN/${way})
            endif()
        endif()
    endforeach()
endfunction()

# Removes the dictionaries of libraries that the project builds no more: programs read all that lie
# there.
function(_lyr_remove_old_dictionaries)
    get_property(files GLOBAL PROPERTY LYR_DICTIONARIES)
    foreach(file IN LISTS LYR_DICTIONARIES)
        if(NOT file IN_LIST files)
            string(REPLACE $<CONFIG> * pattern ${file})
            file(GLOB old ${pattern})
            if(old) # it may never have been built
                file(REMOVE ${old})
            endif()
        endif()
    endforeach()
    set(LYR_DICTIONARIES "${files}" CACHE INTERNAL "The dictionary files that the build writes")
endfunction()

function(_lyr_install_runtime folder)
    get_target_property(isImported LYR::ComponentModel IMPORTED)
    if(isImported)
        install(IMPORTED_RUNTIME_ARTIFACTS LYR::ComponentModel LYR::SysTS
            LIBRARY DESTINATION ${folder})
    else()
        install(TARGETS LYRComponentModel LYRSysTS
            LIBRARY DESTINATION ${folder} NAMELINK_SKIP)
    endif()
endfunction()
