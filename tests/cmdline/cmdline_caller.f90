! A Fortran caller of the command line's upper-case entry points, called the way Fortran calls
! an external routine: character arguments by address, their lengths hidden after all other
! arguments. (The build renames the compiler's lower-case external names to the upper-case ones
! the library exports.)
program cmdline_caller
  implicit none
  character(len=12) :: name
  character(len=10) :: value
  integer :: result, length

  name = '  count   '
  call utl_commandlineinteger(name, result)
  print '(A,I0)', 'integer=', result
  call utl_commandlineismember(name, result)
  print '(A,I0)', 'ismember=', result
  call utl_commandlineismember(' absent ', result)
  print '(A,I0)', 'absent=', result
  value = '##########'
  name = ' label'
  call utl_commandlinestring(name, value, length)
  print '(A,I0,A,A,A)', 'string=', length, ' [', value, ']'
end program cmdline_caller
