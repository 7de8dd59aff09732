#pragma once

/// Declares every public class of the library. For headers that need only the name of a class.

template <class T>
class CSmartPtr;
class CQNCriticalSection;

namespace Quillon9 {

class CAnyElementCol;
class CAttribute;
class CAttributeCol;
class CBase64;
class CBigInteger;
class CBinaryData;
class CBinaryStream;
class CBoundObject;
class CClassfactoryBase;
class CClassTables;
class CConversions;
class CDateTime;
class CDateTimeSpan;
class CDecimal;
class CElement;
class CElementCol;
class CEncoder;
class CEnumCollection;
class CEnumTexts;
class CFailure;
class CFailureList;
class CFailurePlace;
class CFastInfosetBinaryData;
class CFastInfosetContext;
class CFastInfosetWriter;
class CFIIndexMap;
class CFIVocabulary;
class CFileBinaryStream;
class CFileTextStream;
class CInstanceMonitor;
class CLimits;
class CNamespaceAliasMap;
class CNode;
class CObjectCollection;
class CPropertyRef;
class CPrimitiveRestrictions;
class CRecordSource;
class CRecordTarget;
class CSchemaPattern;
class CSchemaValues;
class CQnException;
class CQnInvalidNamespaceException;
class CQnInvalidParamException;
class CQnInvalidStateException;
class CQnInvalidValueException;
class CQnOverFlowException;
class CQnUtf16Exception;
class CQnValidationException;
class CQnZip;
class CStringBuffer;
class CTextStream;
class CUnknownContent;
class CWhitespaceUtils;
class CXmlAttribute;
class CXmlCollection;
class CXmlCollectionBase;
class CXmlDocument;
class CXmlElement;
class CXmlGeneratedClass;
class CXmlNameFilter;
class CXmlObjectBase;
class CXmlObjectHelper;
class CXmlRecordReader;
class CXmlRecordWriter;
class CXmlSerializationContext;
class CXmlSource;
class CXmlTextWriter;
class CXmlTypeCollection;
class CXmlWriter;
class IEventSink;
class IFailureSink;
class INillable;
class QnVariant;
struct CDocumentForm;
struct CMarkup;
struct CUnknownItem;
template <class Enum>
class CEnumCol;
template <class Base>
class CNillable;
template <class T>
class CObjectCol;
template <class T>
class CValueElement;
template <class Node>
class CContentItem;
template <class Node>
class CXmlNodeIterator;
template <class Node>
class CXmlNodeRange;

}  // namespace Quillon9

namespace Quillon9Data {

class CAttributeInfo;
class CAttributeInfoPrimitive;
class CElementInfo;
class CParentElementInfo;

}  // namespace Quillon9Data
