! A Fortran caller of the command line's upper-case entry points. The character lengths are
! passed after all other arguments, where a Fortran compiler passes its hidden lengths.
program cmdline_caller
  use iso_c_binding
  implicit none
  interface
    subroutine cl_integer(name, result, namelen) bind(C, name='UTL_COMMANDLINEINTEGER')
      import :: c_char, c_int
      character(kind=c_char), dimension(*) :: name
      integer(c_int) :: result
      integer(c_int), value :: namelen
    end subroutine
    subroutine cl_ismember(name, result, namelen) bind(C, name='UTL_COMMANDLINEISMEMBER')
      import :: c_char, c_int
      character(kind=c_char), dimension(*) :: name
      integer(c_int) :: result
      integer(c_int), value :: namelen
    end subroutine
    subroutine cl_string(name, out, length, namelen, outlen) bind(C, name='UTL_COMMANDLINESTRING')
      import :: c_char, c_int
      character(kind=c_char), dimension(*) :: name, out
      integer(c_int) :: length
      integer(c_int), value :: namelen, outlen
    end subroutine
  end interface
  character(len=12) :: name
  character(len=10) :: value
  integer(c_int) :: result, length

  name = '  count   '
  call cl_integer(name, result, len(name))
  print '(A,I0)', 'integer=', result
  call cl_ismember(name, result, len(name))
  print '(A,I0)', 'ismember=', result
  call cl_ismember(' absent ', result, 8)
  print '(A,I0)', 'absent=', result
  value = '##########'
  name = ' label'
  call cl_string(name, value, length, len(name), len(value))
  print '(A,I0,A,A,A)', 'string=', length, ' [', value, ']'
end program cmdline_caller
