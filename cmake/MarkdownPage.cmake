# Writes OUTPUT: the page frame FRAME around SOURCE turned into HTML by CMARK.
execute_process(COMMAND ${CMARK} --smart ${SOURCE} OUTPUT_VARIABLE body COMMAND_ERROR_IS_FATAL ANY)
configure_file(${FRAME} ${OUTPUT} @ONLY)
