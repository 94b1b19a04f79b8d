# cmake -DPYTHON=... -DORACLE=... -DLOGS=FOLDER -DOUTPUT=FILE -P expected_values.cmake
# The last values of every log, as the independent reader beside the logs gives them.
file(GLOB logs "${LOGS}/*.nmea")
execute_process(COMMAND ${PYTHON} ${ORACLE} ${logs} OUTPUT_FILE ${OUTPUT} COMMAND_ERROR_IS_FATAL ANY)
