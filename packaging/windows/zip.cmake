# Packs the zip. CPack's own takes the files in the order of the folder, and the user's number: other bytes on another
# machine.
get_filename_component(above ${CPACK_TEMPORARY_DIRECTORY} DIRECTORY)
set(zip ${CPACK_TOPLEVEL_DIRECTORY}/${CPACK_PACKAGE_FILE_NAME}.zip)
file(GLOB_RECURSE files RELATIVE ${above} ${CPACK_TEMPORARY_DIRECTORY}/*) # sorted
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    execute_process(COMMAND touch -d @$ENV{SOURCE_DATE_EPOCH} ${files} WORKING_DIRECTORY ${above} COMMAND_ERROR_IS_FATAL ANY)
endif()
file(REMOVE ${zip})
execute_process(COMMAND zip -X -9 -q ${zip} ${files} WORKING_DIRECTORY ${above} COMMAND_ERROR_IS_FATAL ANY)
set(CPACK_EXTERNAL_BUILT_PACKAGES ${zip})
