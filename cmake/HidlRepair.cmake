# Changes the output of this release of the HIDL compiler in three places. A current C++ compiler
# rejects the first two. FOLDER is the generated package.

# The values of an enumeration are a variable in a header: without "inline" every object file that
# includes it defines the variable again.
file(GLOB headers ${FOLDER}/*.h)
# getHashChain takes the address of a temporary array, which C++ does not allow.
file(GLOB sources ${FOLDER}/*.cpp)
# Every call asks getImpl for a pointer. If each call copied it, all threads of the pool would write to
# the pointer's reference count at the same time.
foreach(file ${headers} ${sources})
    file(READ ${file} text)
    string(REPLACE "template<> constexpr std::array" "template<> inline constexpr std::array"
           repaired "${text}")
    string(REGEX REPLACE "\\(uint8_t\\[32\\]\\){([0-9,]+)}" "std::array<uint8_t, 32>{{\\1}}.data()"
           repaired "${repaired}")
    string(REGEX REPLACE "(::android::sp<[A-Za-z]+>) getImpl\\(\\)" "const \\1& getImpl()"
           repaired "${repaired}")
    if(NOT repaired STREQUAL text)
        file(WRITE ${file} "${repaired}")
    endif()
endforeach()
