# Writes OUTPUT: the page frame FRAME around SOURCE turned into HTML by CMARK. Chapters get anchors, of the names that
# links in SOURCE use, and a list of them goes into the frame.
execute_process(COMMAND ${CMARK} --smart --unsafe ${SOURCE} OUTPUT_VARIABLE body COMMAND_ERROR_IS_FATAL ANY)

string(REGEX MATCHALL "<h2>[^<]*</h2>" headings "${body}")
set(contents "")
foreach(heading IN LISTS headings)
    string(REGEX REPLACE "</?h2>" "" title "${heading}")
    string(TOLOWER "${title}" anchor)
    string(REGEX REPLACE "[^a-z0-9 -]" "" anchor "${anchor}")
    string(REPLACE " " "-" anchor "${anchor}")
    string(REPLACE "${heading}" "<h2 id=\"${anchor}\">${title}</h2>" body "${body}")
    string(APPEND contents "<li><a href=\"#${anchor}\">${title}</a></li>\n")
endforeach()
configure_file(${FRAME} ${OUTPUT} @ONLY)
