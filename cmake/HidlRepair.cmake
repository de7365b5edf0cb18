# Makes two repairs to the output of this release of the HIDL compiler, which a current C++ compiler
# rejects otherwise. FOLDER is the generated package.

# The values of an enumeration are a variable in a header: without "inline" every object file that
# includes it defines the variable again.
file(GLOB headers ${FOLDER}/*.h)
# getHashChain takes the address of a temporary array, which C++ does not allow.
file(GLOB sources ${FOLDER}/*.cpp)
foreach(file ${headers} ${sources})
    file(READ ${file} text)
    string(REPLACE "template<> constexpr std::array" "template<> inline constexpr std::array"
           repaired "${text}")
    string(REGEX REPLACE "\\(uint8_t\\[32\\]\\){([0-9,]+)}" "std::array<uint8_t, 32>{{\\1}}.data()"
           repaired "${repaired}")
    if(NOT repaired STREQUAL text)
        file(WRITE ${file} "${repaired}")
    endif()
endforeach()
