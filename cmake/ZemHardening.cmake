# What compiler and linker do against the use of a memory fault, for every target (tools/check-binaries reads it back from
# the files). Off where a sanitizer watches the same things, and where code is not optimised.

if(NOT ZEM_HARDENED)
  return()
endif()

include(CheckCXXCompilerFlag)
include(CheckPIESupported)

# Programs lie at an address of the system's choice.
check_pie_supported(LANGUAGES CXX)
# Tables of addresses are filled when a file is loaded, and cannot be written afterwards.
target_link_options(zem_options INTERFACE LINKER:-z,relro LINKER:-z,now)
# Calls of the C library are checked where the compiler, which optimises, knows the sizes.
set(optimised $<AND:$<CONFIG:Release,RelWithDebInfo,MinSizeRel>,$<NOT:$<BOOL:$<TARGET_PROPERTY:ZEM_UNOPTIMISED>>>>)
target_compile_options(zem_options INTERFACE
  -fstack-protector-strong
  $<${optimised}:-U_FORTIFY_SOURCE>
  $<${optimised}:-D_FORTIFY_SOURCE=2>)
# x86 alone: indirect jumps and calls reach marked places only.
check_cxx_compiler_flag(-fcf-protection=full ZEM_HAS_CF_PROTECTION)
if(ZEM_HAS_CF_PROTECTION)
  target_compile_options(zem_options INTERFACE -fcf-protection=full)
endif()
